#include "messaging/schema/MSGUtilities.h"

namespace quillet::messaging {

int8_t MSGUtilities::tagForProto(const MSGProtoMessage& proto) {
  if (dynamic_cast<const RelayHeartbeatPing*>(&proto)) return kMSGProtoTagHeartbeatPing;
  if (dynamic_cast<const RelayHeartbeatAck*>(&proto)) return kMSGProtoTagHeartbeatAck;
  if (dynamic_cast<const RelayLoginRequest*>(&proto)) return kMSGProtoTagLoginRequest;
  if (dynamic_cast<const RelayLoginResponse*>(&proto)) return kMSGProtoTagLoginResponse;
  if (dynamic_cast<const RelayClose*>(&proto)) return kMSGProtoTagClose;
  if (dynamic_cast<const RelayIqStanza*>(&proto)) return kMSGProtoTagIqStanza;
  if (dynamic_cast<const RelayDataMessageStanza*>(&proto)) return kMSGProtoTagDataMessageStanza;
  return kMSGProtoTagInvalid;
}

std::unique_ptr<MSGProtoMessage> MSGUtilities::protoForTag(int tag) {
  switch (tag) {
    case kMSGProtoTagHeartbeatPing:
      return std::make_unique<RelayHeartbeatPing>();
    case kMSGProtoTagHeartbeatAck:
      return std::make_unique<RelayHeartbeatAck>();
    case kMSGProtoTagLoginRequest:
      return std::make_unique<RelayLoginRequest>();
    case kMSGProtoTagLoginResponse:
      return std::make_unique<RelayLoginResponse>();
    case kMSGProtoTagClose:
      return std::make_unique<RelayClose>();
    case kMSGProtoTagIqStanza:
      return std::make_unique<RelayIqStanza>();
    case kMSGProtoTagDataMessageStanza:
      return std::make_unique<RelayDataMessageStanza>();
    default:
      return nullptr;
  }
}

std::optional<std::string> MSGUtilities::persistentIdForProto(const MSGProtoMessage& proto) {
  if (auto* iq = dynamic_cast<const RelayIqStanza*>(&proto)) {
    if (iq->has_persistentid()) return iq->persistentid();
  } else if (auto* data = dynamic_cast<const RelayDataMessageStanza*>(&proto)) {
    if (data->has_persistentid()) return data->persistentid();
  }
  return std::nullopt;
}

void MSGUtilities::setPersistentIdForProto(MSGProtoMessage& proto, const std::string& persistentId) {
  if (auto* iq = dynamic_cast<RelayIqStanza*>(&proto)) {
    iq->set_persistentid(persistentId);
  } else if (auto* data = dynamic_cast<RelayDataMessageStanza*>(&proto)) {
    data->set_persistentid(persistentId);
  }
}

namespace {

// Calls `f` with the message as the first of the four types that carry a
// stream position; false when it is none of them.
template <typename Message, typename F>
bool withStreamPositionType(Message& proto, F&& f) {
  using Ping = std::conditional_t<std::is_const_v<Message>, const RelayHeartbeatPing, RelayHeartbeatPing>;
  using Ack = std::conditional_t<std::is_const_v<Message>, const RelayHeartbeatAck, RelayHeartbeatAck>;
  using Iq = std::conditional_t<std::is_const_v<Message>, const RelayIqStanza, RelayIqStanza>;
  using Data = std::conditional_t<std::is_const_v<Message>, const RelayDataMessageStanza, RelayDataMessageStanza>;
  if (auto* iq = dynamic_cast<Iq*>(&proto)) return f(*iq), true;
  if (auto* data = dynamic_cast<Data*>(&proto)) return f(*data), true;
  if (auto* ping = dynamic_cast<Ping*>(&proto)) return f(*ping), true;
  if (auto* ack = dynamic_cast<Ack*>(&proto)) return f(*ack), true;
  return false;
}

}  // namespace

int32_t MSGUtilities::lastStreamIdForProto(const MSGProtoMessage& proto) {
  int32_t position = -1;
  withStreamPositionType(proto, [&](const auto& typed) {
    if (typed.has_laststreamidreceived()) position = typed.laststreamidreceived();
  });
  return position;
}

void MSGUtilities::setLastStreamIdForProto(MSGProtoMessage& proto, int32_t streamId) {
  withStreamPositionType(proto, [&](auto& typed) { typed.set_laststreamidreceived(streamId); });
}

}  // namespace quillet::messaging
