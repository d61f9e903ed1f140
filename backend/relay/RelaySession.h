#pragma once

#include <asio/ip/tcp.hpp>
#include <asio/ssl.hpp>
#include <asio/steady_timer.hpp>

#include <array>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>

#include "messaging/schema/MSGProto.h"

#include "backend/relay/RelayFault.h"
#include "backend/relay/RelayMailbox.h"
#include "platform/clock/Clock.h"

namespace quillet::backend {

// The server side of one relay connection: reads the version byte, requires
// a login first and checks it, keeps its own stream counters and
// acknowledges with lastStreamIdReceived, answers pings, delivers held data
// messages, confirms upstream messages with selective acks and records what
// came in. Lives on the server's io thread, kept alive by its own handlers.
class RelaySession : public std::enable_shared_from_this<RelaySession> {
 public:
  RelaySession(asio::ip::tcp::socket socket, asio::ssl::context& context, RelayMailbox& mailbox,
               std::shared_ptr<platform::Clock> clock, double heartbeatIntervalSeconds, uint64_t sessionId);

  void start();
  // Delivers held messages that this connection has not delivered yet.
  void deliverHeld();
  // Performs a misbehaviour action at once.
  void perform(RelayFault action);
  void close();
  bool isSignedIn() const { return signedIn_; }
  const std::string& device() const { return device_; }

 private:
  void readSome();
  void consume();
  bool handleFrame(int tag, const std::string& body);  // false: close
  bool handleLogin(const std::string& body);
  void send(messaging::MSGProtoMessage& message);
  void writeRaw(std::string bytes, bool thenDrop = false);
  void writeNext();
  void scheduleHeartbeat();

  asio::ssl::stream<asio::ip::tcp::socket> ssl_;
  RelayMailbox& mailbox_;
  std::shared_ptr<platform::Clock> clock_;
  double heartbeatInterval_;
  uint64_t sessionId_;
  asio::steady_timer heartbeat_;
  std::array<uint8_t, 16384> chunk_{};
  std::string input_;
  bool versionRead_ = false;
  bool signedIn_ = false;
  bool loginRefused_ = false;
  bool closed_ = false;
  std::string device_;
  int32_t inStreamId_ = 0;
  int32_t outStreamId_ = 0;
  struct Write {
    std::string bytes;
    bool thenDrop = false;
  };
  std::deque<Write> writes_;
  bool writing_ = false;
};

}  // namespace quillet::backend
