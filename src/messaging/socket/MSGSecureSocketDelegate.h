#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace quillet::messaging {

class MSGSecureSocket;

// What a MSGSecureSocket tells its owner, on the socket's run loop. A
// delegate may disconnect the socket from inside any call, but must not
// destroy it there.
class MSGSecureSocketDelegate {
 public:
  virtual ~MSGSecureSocketDelegate() = default;
  // Both directions are open.
  virtual void secureSocketDidConnect(MSGSecureSocket& socket) = 0;
  // The socket closed itself or was closed through disconnect().
  virtual void didDisconnectWithSecureSocket(MSGSecureSocket& socket) = 0;
  // One complete frame; `data` is valid only during the call.
  virtual void secureSocketDidReceiveData(MSGSecureSocket& socket, std::span<const uint8_t> data, int8_t tag) = 0;
  // Every byte of one frame has been written.
  virtual void secureSocketDidSendProtoWithTag(MSGSecureSocket& socket, int8_t tag,
                                               const std::optional<std::string>& rmqId) = 0;
};

}  // namespace quillet::messaging
