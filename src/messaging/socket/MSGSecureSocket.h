#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "messaging/socket/MSGPacketQueue.h"
#include "messaging/socket/MSGSecureSocketDelegate.h"
#include "messaging/socket/MSGStream.h"
#include "platform/runloop/RunLoop.h"
#include "platform/tls/TlsStream.h"

namespace quillet::messaging {

// One TLS connection to the relay server, used once: it writes the version
// byte, frames outgoing messages (tag, varint length, body), cuts incoming
// bytes into frames across any read boundary and hands each frame to its
// delegate. It knows nothing of what a frame means.
//
// Thread: everything on the run loop given to connectToHost. The delegate is
// not owned (the owner clears it before it goes). Destruction disconnects.
class MSGSecureSocket {
 public:
  enum State : uint32_t { kStateNew = 0, kStateOpening = 1, kStateOpen = 2, kStateClosing = 3, kStateClosed = 4 };
  // Results of frame parsing.
  enum FrameResult { kFrameIncomplete = 1, kFrameError = 2, kFrameComplete = 3 };

  static constexpr size_t kBufferStep = 16384;       // first size and growth step of the input buffer
  static constexpr size_t kMaxBufferSize = 1048576;  // the input buffer never grows past this

  // Makes the byte stream for a connection; null means the pair could not be made.
  using StreamFactory = std::function<std::shared_ptr<MSGStream>(platform::RunLoop&)>;
  // Streams over platform TLS with these options.
  static StreamFactory tlsStreamFactory(platform::TlsStreamOptions options);

  explicit MSGSecureSocket(StreamFactory factory);
  ~MSGSecureSocket();
  MSGSecureSocket(const MSGSecureSocket&) = delete;
  MSGSecureSocket& operator=(const MSGSecureSocket&) = delete;

  void setDelegate(MSGSecureSocketDelegate* delegate) { delegate_ = delegate; }
  MSGSecureSocketDelegate* delegate() const { return delegate_; }

  // Opens the connection; acts only in state 0.
  void connectToHost(const std::string& host, uint16_t port, platform::RunLoop& runLoop);
  // Closes at once; nothing queued is flushed. Does nothing when closing or
  // when there is no stream.
  void disconnect();
  // Queues a frame and, when the stream has space now, runs the write pass.
  void sendData(std::vector<uint8_t> data, int8_t tag, std::optional<std::string> rmqId);
  // The stream's events (open completed, bytes, space, error, end).
  void streamHandleEvent(platform::TlsStreamEvent event);

  State state() const { return state_; }
  size_t inputBufferCapacity() const { return inputBuffer_.size(); }
  size_t inputBufferLength() const { return inputBufferLength_; }
  size_t queuedPacketCount() const { return packetQueue_.count(); }

  // Parses one frame at the start of `bytes`; on kFrameComplete the delegate
  // has had it and `outOffset` holds the bytes it took.
  FrameResult processCurrentInputBuffer(std::span<const uint8_t> bytes, size_t* outOffset);

 private:
  void openStream();
  bool performRead();
  void performWrite();

  StreamFactory factory_;
  MSGSecureSocketDelegate* delegate_ = nullptr;
  State state_ = kStateNew;
  std::shared_ptr<MSGStream> stream_;  // stands for the input and output streams
  bool isVersionSent_ = false;
  bool isVersionReceived_ = false;
  bool isInStreamOpen_ = false;
  bool isOutStreamOpen_ = false;
  std::vector<uint8_t> inputBuffer_ = std::vector<uint8_t>(kBufferStep);
  size_t inputBufferLength_ = 0;
  std::vector<uint8_t> outputBuffer_;
  size_t outputBufferLength_ = 0;
  MSGPacketQueue packetQueue_;
  int8_t currentProtoTypeBeingSent_ = -1;
  std::optional<std::string> currentRmqIdBeingSent_;
  platform::RunLoop* runLoop_ = nullptr;
};

}  // namespace quillet::messaging
