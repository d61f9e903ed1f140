#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <google/protobuf/message.h>

#include "messaging/schema/MSGProtoTag.h"
#include "messaging/schema/Relay.pb.h"

namespace quillet::messaging {

// The tag table both ways and the readers and writers of the two fields that
// the connection handles for every message type. Pure functions; any thread.
class MSGUtilities {
 public:
  // The tag of a framed message type: 0, 1, 2, 3, 4, 7 or 8; -1 for any other type.
  static int8_t tagForProto(const google::protobuf::Message& proto);
  // A new empty message of the type of `tag`; null for a tag outside the table.
  static std::unique_ptr<google::protobuf::Message> protoForTag(int tag);

  // `persistentId` of an iq or data stanza when present; nullopt otherwise.
  static std::optional<std::string> persistentIdForProto(const google::protobuf::Message& proto);
  // Sets `persistentId` on an iq or data stanza; other types are left alone.
  static void setPersistentIdForProto(google::protobuf::Message& proto, const std::string& persistentId);

  // `lastStreamIdReceived` of a ping, heartbeat ack, iq or data stanza when
  // present; -1 otherwise (the login response is not read).
  static int32_t lastStreamIdForProto(const google::protobuf::Message& proto);
  // Sets `lastStreamIdReceived` on those same four types; nothing for others.
  static void setLastStreamIdForProto(google::protobuf::Message& proto, int32_t streamId);
};

}  // namespace quillet::messaging
