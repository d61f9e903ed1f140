#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "messaging/connection/MSGConnection.h"
#include "messaging/schema/MSGUtilities.h"
#include "messaging/socket/MSGMemoryStream.h"
#include "support/LogCapture.h"
#include "support/TempDir.h"

namespace quillet::messaging {
namespace {

// Counts every delegate call; answers acks with a fixed count.
struct CountingClient : MSGConnectionDelegate, MSGConnectionResender {
  int ackCalls = 0, resends = 0, messages = 0;
  int32_t ackAnswer = 0;
  std::vector<int> closes;
  void connectionDidCloseForReason(MSGConnection&, int reason) override { closes.push_back(reason); }
  void didLoginWithConnection(MSGConnection&) override {}
  void connectionDidRecieveMessage(MSGConnection&, const RelayDataMessageStanza&) override { ++messages; }
  int32_t connectionDidReceiveAckForRmqIds(MSGConnection&, const std::vector<std::string>&) override {
    ++ackCalls;
    return ackAnswer;
  }
  void resendMessagesWithConnection(MSGConnection&) override { ++resends; }
};

// The connection over an in-process stream whose server side the test writes.
class ConnectionRulesTest : public ::testing::Test {
 protected:
  ConnectionRulesTest() {
    connection = std::make_unique<MSGConnection>("4660", "secret", "relay.test", 5228, loop,
                                                 std::weak_ptr<MSGRmqManager>(), client, [this](platform::RunLoop& l) {
                                                   stream = std::make_shared<MSGMemoryStream>(l);
                                                   return stream;
                                                 });
    connection->setDelegate(client);
  }
  void serverSends(messaging::MSGProtoMessage& message, bool first = false) {
    std::string body = message.SerializePartialAsString();
    std::string bytes = first ? std::string(1, '\x28') : std::string();
    bytes.push_back(static_cast<char>(MSGUtilities::tagForProto(message)));
    bytes.push_back(static_cast<char>(body.size()));  // bodies here stay below 128 bytes
    stream->deliver(bytes + body);
    loop.runPending();
  }
  void connectOnly() {
    connection->signIn();
    stream->completeOpen();
    loop.runPending();
    ASSERT_EQ(connection->state(), MSGConnection::kStateLoggingIn);
  }
  void login() {
    connectOnly();
    RelayLoginResponse response;
    response.set_id_p("x");
    response.set_servertimestamp(77);
    serverSends(response, true);
    ASSERT_EQ(connection->state(), MSGConnection::kStateSignedIn);
  }
  RelayDataMessageStanza data(const std::string& persistentId = "") {
    RelayDataMessageStanza stanza;
    stanza.set_from("s");
    stanza.set_category("c");
    if (!persistentId.empty()) stanza.set_persistentid(persistentId);
    return stanza;
  }

  testing::LogCapture log;
  platform::RunLoop loop{std::make_shared<platform::ManualClock>()};
  std::shared_ptr<CountingClient> client = std::make_shared<CountingClient>();
  std::shared_ptr<MSGMemoryStream> stream;
  std::unique_ptr<MSGConnection> connection;
};

TEST_F(ConnectionRulesTest, FrameOtherThanLoginResponseInLoggingInIsIgnoredAndClearsNoTimer) {
  connectOnly();
  RelayHeartbeatPing ping;
  serverSends(ping, true);
  EXPECT_EQ(connection->inStreamId(), 0);
  loop.advance(60);  // no ping was scheduled by it
  EXPECT_EQ(connection->outStreamId(), 1);
  auto stanza = data();
  connection->sendProto(stanza);  // a data stanza in state 2 is dropped
  EXPECT_EQ(connection->outStreamId(), 1);
}

TEST_F(ConnectionRulesTest, AckCallIsDoubledAndItsSecondCountDecidesTheStreamAck) {
  login();
  RelayHeartbeatAck ack;
  ack.set_laststreamidreceived(2);
  const int before = client->ackCalls;
  serverSends(ack);
  EXPECT_EQ(client->ackCalls - before, 2);
  const int32_t outBefore = connection->outStreamId();
  client->ackAnswer = 5;
  serverSends(ack);
  EXPECT_EQ(connection->outStreamId(), outBefore + 1);  // a stream ack went out
  RelayHeartbeatAck noPosition;
  const int calls = client->ackCalls;
  serverSends(noPosition);
  EXPECT_EQ(client->ackCalls, calls);  // -1: no confirmation runs
}

TEST_F(ConnectionRulesTest, EmptySelectiveAckStillResends) {
  login();
  RelayIqStanza iq;
  iq.set_type(RelayIqStanza::IQ_TYPE_1);
  iq.set_id_p("");
  iq.mutable_extension()->set_id_p(kMSGExtensionSelectiveAck);
  iq.mutable_extension()->set_data_p("");
  serverSends(iq);
  EXPECT_EQ(client->resends, 1);
}

TEST_F(ConnectionRulesTest, AnySendAcknowledgesAndRestartsTheCount) {
  login();
  for (int i = 0; i < 5; ++i) {
    auto stanza = data("p" + std::to_string(i));
    serverSends(stanza);
  }
  EXPECT_EQ(connection->unackedS2dIds().size(), 5u);
  connection->sendHeartbeatAck();
  EXPECT_EQ(connection->lastStreamIdAcked(), 6);
  EXPECT_TRUE(connection->unackedS2dIds().empty());
  ASSERT_EQ(connection->ackedS2dMap().count(std::to_string(connection->outStreamId())), 1u);
}

TEST_F(ConnectionRulesTest, HeldMessagesGoAfterLoginAndSignOutDropsThem) {
  auto first = data();
  connection->sendOnConnectOrDrop(first);
  EXPECT_EQ(connection->sendOnConnectMessageCount(), 1u);
  login();
  EXPECT_EQ(connection->sendOnConnectMessageCount(), 0u);
  EXPECT_EQ(connection->outStreamId(), 3);  // login, ping, the held stanza
  connection->signOut();
  EXPECT_EQ(connection->state(), MSGConnection::kStateDisconnected);
  auto second = data();
  connection->sendOnConnectOrDrop(second);
  connection->signOut();
  EXPECT_EQ(connection->sendOnConnectMessageCount(), 0u);
  EXPECT_TRUE(client->closes.empty());
}

TEST_F(ConnectionRulesTest, InvalidTagIsLoggedAndDropped) {
  login();
  stream->deliver(std::string("\x05\x00", 2));
  loop.runPending();
  EXPECT_TRUE(log.contains("Invalid tag 5 for proto"));
  EXPECT_EQ(connection->inStreamId(), 1);
  EXPECT_EQ(connection->state(), MSGConnection::kStateSignedIn);
}

}  // namespace
}  // namespace quillet::messaging
