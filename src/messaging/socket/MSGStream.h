#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

#include "platform/tls/TlsStreamDelegate.h"

namespace quillet::messaging {

// The byte stream under a MSGSecureSocket: one ordered, event-driven
// connection with separate readiness for reading and writing, on one run
// loop. It stands for the phone's input and output stream pair. Events are
// posted to the handler (never delivered from inside a call on the stream),
// numbered as platform::TlsStreamEvent. Thread: the run loop's.
class MSGStream {
 public:
  using EventHandler = std::function<void(platform::TlsStreamEvent)>;
  // Stream status as the phone numbers it; only NotOpen (0) is tested by the socket.
  static constexpr int kStatusNotOpen = 0;

  virtual ~MSGStream() = default;

  // The handler receives the stream's events until it is replaced or cleared.
  virtual void setEventHandler(EventHandler handler) = 0;
  // Starts connecting; only from NotOpen.
  virtual bool open(const std::string& host, uint16_t port) = 0;
  // Drops the connection; no events follow.
  virtual void close() = 0;
  virtual int status() const = 0;
  virtual bool hasBytesAvailable() const = 0;
  // When false while open, a HasSpaceAvailable event follows once it becomes true.
  virtual bool hasSpaceAvailable() = 0;
  // Count read, 0 when nothing waits, -1 when closed or failed.
  virtual ptrdiff_t read(uint8_t* buffer, size_t maxLength) = 0;
  // Count taken, -1 when not open.
  virtual ptrdiff_t write(const uint8_t* data, size_t length) = 0;
};

}  // namespace quillet::messaging
