#pragma once

#include <cstdint>

namespace quillet::messaging {

// The tag byte that stands for each framed relay message type. Tags 5 and 6
// belong to no message; a tag with its top bit set is a protocol error.
enum MSGProtoTag : int8_t {
  kMSGProtoTagInvalid = -1,
  kMSGProtoTagHeartbeatPing = 0,
  kMSGProtoTagHeartbeatAck = 1,
  kMSGProtoTagLoginRequest = 2,
  kMSGProtoTagLoginResponse = 3,
  kMSGProtoTagClose = 4,
  kMSGProtoTagIqStanza = 7,
  kMSGProtoTagDataMessageStanza = 8,
};

// Extension ids inside a RelayIqStanza.
constexpr int32_t kMSGExtensionSelectiveAck = 12;
constexpr int32_t kMSGExtensionStreamAck = 13;

// The protocol version byte that opens each direction of a connection.
constexpr uint8_t kMSGVersion = 40;

}  // namespace quillet::messaging
