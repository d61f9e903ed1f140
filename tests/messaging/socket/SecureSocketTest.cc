#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "messaging/socket/MSGCodedInputStream.h"
#include "messaging/socket/MSGMemoryStream.h"
#include "messaging/socket/MSGPacket.h"
#include "messaging/socket/MSGSecureSocket.h"

namespace quillet::messaging {
namespace {

std::string varint(uint64_t value) {
  std::string out;
  do {
    uint8_t byte = value & 0x7f;
    value >>= 7;
    out.push_back(static_cast<char>(byte | (value ? 0x80 : 0)));
  } while (value);
  return out;
}

std::string frame(uint8_t tag, const std::string& body) {
  return std::string(1, static_cast<char>(tag)) + varint(body.size()) + body;
}

struct Recorder : MSGSecureSocketDelegate {
  int connects = 0, disconnects = 0;
  std::vector<std::pair<int, std::string>> frames;
  std::vector<std::pair<int, std::optional<std::string>>> sent;
  void secureSocketDidConnect(MSGSecureSocket&) override { ++connects; }
  void didDisconnectWithSecureSocket(MSGSecureSocket&) override { ++disconnects; }
  void secureSocketDidReceiveData(MSGSecureSocket&, std::span<const uint8_t> data, int8_t tag) override {
    frames.emplace_back(tag, std::string(data.begin(), data.end()));
  }
  void secureSocketDidSendProtoWithTag(MSGSecureSocket&, int8_t tag, const std::optional<std::string>& id) override {
    sent.emplace_back(tag, id);
  }
};

class SecureSocketTest : public ::testing::Test {
 protected:
  SecureSocketTest() {
    socket = std::make_unique<MSGSecureSocket>([this](platform::RunLoop& l) {
      stream = std::make_shared<MSGMemoryStream>(l);
      return stream;
    });
    socket->setDelegate(&recorder);
  }

  void open() {
    socket->connectToHost("127.0.0.1", 5228, loop);
    ASSERT_EQ(socket->state(), MSGSecureSocket::kStateOpening);
    stream->completeOpen();
    loop.runPending();
    ASSERT_EQ(socket->state(), MSGSecureSocket::kStateOpen);
  }
  void deliver(const std::string& bytes) {
    stream->deliver(bytes);
    loop.runPending();
  }
  std::string written() const { return std::string(stream->written().begin(), stream->written().end()); }

  platform::RunLoop loop{std::make_shared<platform::ManualClock>()};
  Recorder recorder;
  std::shared_ptr<MSGMemoryStream> stream;
  std::unique_ptr<MSGSecureSocket> socket;
};

TEST_F(SecureSocketTest, OpensWritesVersionByteAndIgnoresSecondConnect) {
  open();
  EXPECT_EQ(recorder.connects, 1);
  EXPECT_EQ(written(), "\x28");  // first write pass, nothing queued
  EXPECT_EQ(stream->host(), "127.0.0.1");
  auto first = stream;
  socket->connectToHost("other", 1, loop);
  EXPECT_EQ(stream, first);
  socket->sendData({'h', 'i'}, 7, std::string("12"));
  EXPECT_EQ(written(), std::string("\x28\x07\x02hi"));
  ASSERT_EQ(recorder.sent.size(), 1u);
  EXPECT_EQ(recorder.sent[0].second, "12");
}

TEST_F(SecureSocketTest, FrameArrivingOneByteAtATimeIsDeliveredOnceAtItsLastByte) {
  open();
  std::string body(300, 'x');  // a two-byte varint split across reads
  std::string bytes = "\x28" + frame(8, body);
  for (size_t i = 0; i + 1 < bytes.size(); ++i) {
    deliver(bytes.substr(i, 1));
    EXPECT_TRUE(recorder.frames.empty());
  }
  deliver(bytes.substr(bytes.size() - 1));
  ASSERT_EQ(recorder.frames.size(), 1u);
  EXPECT_EQ(recorder.frames[0].first, 8);
  EXPECT_EQ(recorder.frames[0].second, body);
  EXPECT_EQ(socket->inputBufferLength(), 0u);
}

TEST_F(SecureSocketTest, TwoFramesInOneReadInOrderAndPartialTailKept) {
  open();
  deliver("\x28" + frame(0, "") + frame(3, "abc") + frame(7, "de").substr(0, 3));
  ASSERT_EQ(recorder.frames.size(), 2u);
  EXPECT_EQ(recorder.frames[0], std::make_pair(0, std::string()));
  EXPECT_EQ(recorder.frames[1], std::make_pair(3, std::string("abc")));
  EXPECT_EQ(socket->inputBufferLength(), 3u);
  deliver("e");
  ASSERT_EQ(recorder.frames.size(), 3u);
  EXPECT_EQ(recorder.frames[2].second, "de");
  EXPECT_EQ(socket->inputBufferLength(), 0u);
  EXPECT_EQ(socket->inputBufferCapacity(), MSGSecureSocket::kBufferStep);
}

TEST_F(SecureSocketTest, WrongVersionByteCloses) {
  open();
  deliver("\x27" + frame(0, ""));
  EXPECT_EQ(recorder.disconnects, 1);
  EXPECT_EQ(socket->state(), MSGSecureSocket::kStateClosed);
  EXPECT_TRUE(recorder.frames.empty());
}

TEST_F(SecureSocketTest, NegativeTagClosesOnlyOnceItsLengthHasArrived) {
  open();
  deliver("\x28\x80");
  EXPECT_EQ(socket->state(), MSGSecureSocket::kStateOpen);
  deliver("\x01");
  EXPECT_EQ(socket->state(), MSGSecureSocket::kStateClosed);
  EXPECT_EQ(recorder.disconnects, 1);
}

TEST_F(SecureSocketTest, NegativeLengthClosesAtOnce) {
  open();
  deliver(std::string("\x28\x08") + varint(0x80000000u));  // 2 GiB reads as negative
  EXPECT_EQ(socket->state(), MSGSecureSocket::kStateClosed);
}

TEST_F(SecureSocketTest, OversizedFrameClosesWhenTheBufferHitsItsLimit) {
  open();
  const size_t size = 1536 * 1024;
  std::string bytes = "\x28" + std::string(1, '\x08') + varint(size);
  deliver(bytes);
  std::string chunk(64 * 1024, 'z');
  size_t sent = 0;
  while (socket->state() == MSGSecureSocket::kStateOpen && sent < size) {
    deliver(chunk);
    sent += chunk.size();
    EXPECT_LE(socket->inputBufferCapacity(), MSGSecureSocket::kMaxBufferSize);
  }
  EXPECT_EQ(socket->state(), MSGSecureSocket::kStateClosed);
  EXPECT_GE(sent, MSGSecureSocket::kMaxBufferSize - 64 * 1024);
  EXPECT_TRUE(recorder.frames.empty());
}

TEST_F(SecureSocketTest, TenByteVarintRule) {
  // Five value bytes and up to five skipped bytes are accepted.
  std::string longLength = "\x83\x80\x80\x80\x80\x80\x80\x80\x80\x00";
  std::string ok = std::string("\x08") + longLength + "abc";
  MSGCodedInputStream input({reinterpret_cast<const uint8_t*>(ok.data()), ok.size()});
  int8_t tag;
  int32_t length;
  ASSERT_TRUE(input.readTag(&tag));
  ASSERT_TRUE(input.readLength(&length));
  EXPECT_EQ(length, 3);
  // A tenth byte that still continues: incomplete, never an error.
  open();
  deliver(std::string("\x28\x08") + std::string(10, '\x80') + "abc");
  EXPECT_EQ(socket->state(), MSGSecureSocket::kStateOpen);
  EXPECT_TRUE(recorder.frames.empty());
}

TEST_F(SecureSocketTest, ShortWriteOfLastFrameWaitsForTheNextSend) {
  open();
  stream->clearWritten();
  stream->setWriteBudget(3);
  socket->sendData(std::vector<uint8_t>(10, 'a'), 8, std::nullopt);
  EXPECT_EQ(stream->written().size(), 3u);
  for (int i = 0; i < 3; ++i) {
    stream->grantSpace();
    loop.runPending();
  }
  EXPECT_EQ(stream->written().size(), 3u);  // the queue is empty: the pass returns at once
  EXPECT_TRUE(recorder.sent.empty());
  socket->sendData({'b'}, 0, std::nullopt);
  EXPECT_EQ(written(), frame(8, std::string(10, 'a')) + frame(0, "b"));
  ASSERT_EQ(recorder.sent.size(), 2u);
  EXPECT_EQ(recorder.sent[0].first, 8);
}

TEST_F(SecureSocketTest, PartlyWrittenFrameWithPacketsBehindIsFinishedBySpaceEvent) {
  open();
  stream->clearWritten();
  stream->setWriteBudget(0);
  socket->sendData({'a', 'b'}, 1, std::nullopt);
  socket->sendData({'c'}, 2, std::nullopt);
  EXPECT_TRUE(stream->written().empty());
  stream->grantSpace(3);
  loop.runPending();
  EXPECT_EQ(stream->written().size(), 3u);
  stream->grantSpace();
  loop.runPending();
  EXPECT_EQ(written(), frame(1, "ab") + frame(2, "c"));
}

TEST_F(SecureSocketTest, EndOfStreamAndDisconnectReportOnce) {
  open();
  stream->end();
  loop.runPending();
  EXPECT_EQ(recorder.disconnects, 1);
  socket->disconnect();
  EXPECT_EQ(recorder.disconnects, 1);
  EXPECT_EQ(socket->state(), MSGSecureSocket::kStateClosed);
}

TEST(PacketTest, DescriptionAndQueueOrder) {
  EXPECT_EQ(MSGPacket(8, std::string("5"), {1, 2}).description(), "<Packet: Tag - 8, Length - 2>, RmqId - 5");
  EXPECT_EQ(MSGPacket(0, std::string(""), {}).description(), "<Packet: Tag - 0, Length - 0>");
  MSGPacketQueue queue;
  EXPECT_EQ(queue.pop(), nullptr);
  queue.push(MSGPacket::packetWithTag(1, std::nullopt, {}));
  queue.pushHead(MSGPacket::packetWithTag(2, std::nullopt, {}));
  EXPECT_EQ(queue.count(), 2u);
  EXPECT_EQ(queue.pop()->tag(), 2);
  EXPECT_EQ(queue.pop()->tag(), 1);
  EXPECT_TRUE(queue.isEmpty());
}

}  // namespace
}  // namespace quillet::messaging
