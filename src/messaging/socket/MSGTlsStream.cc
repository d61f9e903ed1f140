#include "messaging/socket/MSGTlsStream.h"

namespace quillet::messaging {

using platform::TlsStreamEvent;

MSGTlsStream::MSGTlsStream(platform::RunLoop& loop, platform::TlsStreamOptions options)
    : loop_(loop), stream_(loop, std::move(options)) {
  stream_.setDelegate(this);
}

MSGTlsStream::~MSGTlsStream() {
  *alive_ = false;
  stream_.close();
}

void MSGTlsStream::setEventHandler(EventHandler handler) { handler_ = std::move(handler); }

bool MSGTlsStream::open(const std::string& host, uint16_t port) { return stream_.open(host, port); }

void MSGTlsStream::close() {
  handler_ = nullptr;
  stream_.close();
}

int MSGTlsStream::status() const { return static_cast<int>(stream_.status()); }
bool MSGTlsStream::hasBytesAvailable() const { return stream_.hasBytesAvailable(); }
bool MSGTlsStream::hasSpaceAvailable() { return stream_.hasSpaceAvailable(); }
ptrdiff_t MSGTlsStream::read(uint8_t* buffer, size_t maxLength) { return stream_.read(buffer, maxLength); }
ptrdiff_t MSGTlsStream::write(const uint8_t* data, size_t length) { return stream_.write(data, length); }

void MSGTlsStream::streamHandleEvent(platform::TlsStream&, TlsStreamEvent event) {
  if (event == TlsStreamEvent::OpenCompleted) {
    // The phone's output stream tells of space as soon as it opens.
    loop_.post([this, alive = std::weak_ptr<bool>(alive_)] {
      auto flag = alive.lock();
      if (!flag || !*flag || !handler_ || !stream_.hasSpaceAvailable()) return;
      auto handler = handler_;  // the handler may destroy this object
      handler(TlsStreamEvent::HasSpaceAvailable);
    });
  }
  if (!handler_) return;
  auto handler = handler_;  // the handler may destroy this object
  handler(event);
}

}  // namespace quillet::messaging
