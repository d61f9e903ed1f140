#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "platform/tls/TlsStreamDelegate.h"
#include "platform/value/Error.h"

namespace quillet::platform {

class RunLoop;

// How a TlsStream trusts its peer and how much it buffers.
struct TlsStreamOptions {
  std::filesystem::path caFile;         // trusted CA certificates (PEM); empty: the system store
  bool verifyPeer = true;               // false only in tests: no chain and no name check
  size_t outgoingCapacity = 64 * 1024;  // bytes write() may hold before it refuses
  size_t incomingCapacity = 64 * 1024;  // bytes held unread before the stream stops reading
};

// A client TLS byte stream over TCP, driven by a run loop: the phone's
// paired socket streams with the negotiated security level, as one object.
//
// open() resolves, connects and shakes hands without blocking; progress and
// readiness come as events to the delegate (see TlsStreamDelegate). read()
// and write() never block: read() hands out what has arrived, write() takes
// what fits in a bounded outgoing buffer and returns the count taken. When
// write() took less than offered, or hasSpaceAvailable() said no, a
// HasSpaceAvailable event follows once space frees up. HasBytesAvailable is
// posted when bytes arrive and no such event is already waiting; a delegate
// reads until hasBytesAvailable() is false.
//
// Thread: every call on the run loop's thread. Lifetime: the loop outlives the
// stream; the delegate is not owned and must outlive the stream or be cleared
// (close() and the destructor clear it). Time-outs belong to the caller.
class TlsStream {
 public:
  // Stream states, numbered like the phone's stream status.
  enum class Status { NotOpen = 0, Opening = 1, Open = 2, AtEnd = 5, Closed = 6, Error = 7 };

  using Options = TlsStreamOptions;

  // Error domain and codes of error().
  static constexpr const char* kErrorDomain = "TlsStreamErrorDomain";
  enum ErrorCode : int64_t {
    kResolveFailed = 1,    // the host name did not resolve
    kConnectFailed = 2,    // no address accepted the connection
    kHandshakeFailed = 3,  // the TLS handshake failed for a reason other than trust
    kPeerUntrusted = 4,    // the peer's chain or name did not verify
    kReadFailed = 5,
    kWriteFailed = 6,
    kBadConfiguration = 7,  // the CA file could not be loaded
  };

  explicit TlsStream(RunLoop& loop, Options options = {});
  ~TlsStream();  // close()
  TlsStream(const TlsStream&) = delete;
  TlsStream& operator=(const TlsStream&) = delete;

  void setDelegate(TlsStreamDelegate* delegate);

  // Starts connecting to host:port (a name or an IP literal; the peer's
  // certificate must name it). Only from NotOpen; false otherwise. Failures
  // come later as an ErrorOccurred event.
  bool open(const std::string& host, uint16_t port);
  // Drops the connection without waiting; clears the delegate; no event
  // follows. Unsent bytes are discarded. Safe in any state.
  void close();

  Status status() const;
  // The failure that put the stream in Status::Error.
  const std::optional<Error>& error() const;

  // Unread bytes are waiting (Open or AtEnd).
  bool hasBytesAvailable() const;
  // write() would take at least one byte. When false while open, a
  // HasSpaceAvailable event follows once it becomes true.
  bool hasSpaceAvailable();

  // Copies up to maxLength unread bytes into buffer: the count, 0 when none
  // are waiting (or still opening), -1 when closed, failed or never opened.
  ptrdiff_t read(uint8_t* buffer, size_t maxLength);
  // Takes up to length bytes for sending: the count taken (0 while opening or
  // with a full buffer), -1 when not open.
  ptrdiff_t write(const uint8_t* data, size_t length);

 private:
  class Engine;
  std::shared_ptr<Engine> engine_;
};

}  // namespace quillet::platform
