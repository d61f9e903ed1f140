#pragma once

#include <cstdint>

namespace quillet::platform {

class TlsStream;

// What a TlsStream reports, numbered like the phone's stream events so that
// a caller can test them as a bit set.
enum class TlsStreamEvent : uint32_t {
  OpenCompleted = 1,      // connected and the TLS handshake is done
  HasBytesAvailable = 2,  // read() now returns bytes
  HasSpaceAvailable = 4,  // write() now accepts bytes
  ErrorOccurred = 8,      // the stream failed; TlsStream::error() says why; no more events follow
  EndEncountered = 16,    // the peer closed; buffered bytes can still be read; no more events follow
};

// Receives a TlsStream's events, on the stream's run loop thread, one at a
// time and in order. Never called from inside a TlsStream call (events are
// posted), so the delegate may read, write, close or destroy the stream.
class TlsStreamDelegate {
 public:
  virtual ~TlsStreamDelegate() = default;
  virtual void streamHandleEvent(TlsStream& stream, TlsStreamEvent event) = 0;
};

}  // namespace quillet::platform
