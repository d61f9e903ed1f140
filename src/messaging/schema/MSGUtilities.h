#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "messaging/schema/MSGProto.h"

#include "messaging/schema/MSGProtoTag.h"
#include "messaging/schema/Relay.pb.h"

namespace quillet::messaging {

// The tag table both ways and the readers and writers of the two fields that
// the connection handles for every message type. Pure functions; any thread.
class MSGUtilities {
 public:
  // The tag of a framed message type: 0, 1, 2, 3, 4, 7 or 8; -1 for any other type.
  static int8_t tagForProto(const MSGProtoMessage& proto);
  // A new empty message of the type of `tag`; null for a tag outside the table.
  static std::unique_ptr<MSGProtoMessage> protoForTag(int tag);

  // `persistentId` of an iq or data stanza when present; nullopt otherwise.
  static std::optional<std::string> persistentIdForProto(const MSGProtoMessage& proto);
  // Sets `persistentId` on an iq or data stanza; other types are left alone.
  static void setPersistentIdForProto(MSGProtoMessage& proto, const std::string& persistentId);

  // `lastStreamIdReceived` of a ping, heartbeat ack, iq or data stanza when
  // present; -1 otherwise (the login response is not read).
  static int32_t lastStreamIdForProto(const MSGProtoMessage& proto);
  // Sets `lastStreamIdReceived` on those same four types; nothing for others.
  static void setLastStreamIdForProto(MSGProtoMessage& proto, int32_t streamId);
};

}  // namespace quillet::messaging
