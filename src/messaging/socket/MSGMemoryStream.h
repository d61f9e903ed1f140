#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "messaging/socket/MSGStream.h"
#include "platform/runloop/RunLoop.h"

namespace quillet::messaging {

// An in-process MSGStream whose far end is driven by the caller: it decides
// when the stream opens, which bytes arrive and in what pieces, how many
// bytes each write may take, and when the stream ends. Used to drive the
// socket's read and write passes with exact chunking (tests, fuzzing,
// benchmarks). Events are posted to the run loop like the TLS stream's.
// Thread: the run loop's; the loop outlives the object.
class MSGMemoryStream final : public MSGStream {
 public:
  explicit MSGMemoryStream(platform::RunLoop& loop);
  ~MSGMemoryStream() override;

  // MSGStream.
  void setEventHandler(EventHandler handler) override;
  bool open(const std::string& host, uint16_t port) override;
  void close() override;
  int status() const override;
  bool hasBytesAvailable() const override;
  bool hasSpaceAvailable() override;
  ptrdiff_t read(uint8_t* buffer, size_t maxLength) override;
  ptrdiff_t write(const uint8_t* data, size_t length) override;

  // The far end.
  // Opens the stream: posts open completed and then space available.
  void completeOpen();
  // Appends bytes to what can be read; posts bytes available.
  void deliver(std::span<const uint8_t> bytes);
  void deliver(const std::string& bytes);
  // Each read() hands out at most this many bytes (default: no limit).
  void setReadChunkLimit(size_t limit) { readChunkLimit_ = limit; }
  // From now on write() takes at most `budget` bytes in total until the next
  // grant; grantSpace also posts space available.
  void setWriteBudget(size_t budget) { writeBudget_ = budget; }
  void grantSpace(size_t budget = std::numeric_limits<size_t>::max());
  // Posts end of stream or an error.
  void end();
  void fail();

  const std::string& host() const { return host_; }
  uint16_t port() const { return port_; }
  // Everything write() took, in order.
  const std::vector<uint8_t>& written() const { return written_; }
  void clearWritten() { written_.clear(); }
  size_t unreadCount() const { return incoming_.size() - readOffset_; }

 private:
  void post(platform::TlsStreamEvent event);

  platform::RunLoop& loop_;
  EventHandler handler_;
  int status_ = kStatusNotOpen;
  std::string host_;
  uint16_t port_ = 0;
  std::vector<uint8_t> incoming_;
  size_t readOffset_ = 0;
  size_t readChunkLimit_ = std::numeric_limits<size_t>::max();
  size_t writeBudget_ = std::numeric_limits<size_t>::max();
  bool bytesEventPending_ = false;
  std::vector<uint8_t> written_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace quillet::messaging
