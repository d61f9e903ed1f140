#pragma once

#include <memory>

#include "messaging/socket/MSGStream.h"
#include "platform/runloop/RunLoop.h"
#include "platform/tls/TlsStream.h"

namespace quillet::messaging {

// MSGStream over the platform's TLS stream. Like the phone's output stream it
// reports space available right after the connection opens, so that the first
// write pass runs without waiting for a send. Thread: the run loop's; the
// loop outlives the object.
class MSGTlsStream final : public MSGStream, private platform::TlsStreamDelegate {
 public:
  MSGTlsStream(platform::RunLoop& loop, platform::TlsStreamOptions options);
  ~MSGTlsStream() override;

  void setEventHandler(EventHandler handler) override;
  bool open(const std::string& host, uint16_t port) override;
  void close() override;
  int status() const override;
  bool hasBytesAvailable() const override;
  bool hasSpaceAvailable() override;
  ptrdiff_t read(uint8_t* buffer, size_t maxLength) override;
  ptrdiff_t write(const uint8_t* data, size_t length) override;

 private:
  void streamHandleEvent(platform::TlsStream& stream, platform::TlsStreamEvent event) override;

  platform::RunLoop& loop_;
  platform::TlsStream stream_;
  EventHandler handler_;
  // Lets a posted space event find out that this object is gone.
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace quillet::messaging
