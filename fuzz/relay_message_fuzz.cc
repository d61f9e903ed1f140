// Each relay message type's parse: the first byte chooses the tag, the rest
// is the body; a parsed message goes through the field readers and back.
#include <cstddef>
#include <cstdint>

#include "messaging/schema/MSGUtilities.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using quillet::messaging::MSGUtilities;
  if (size < 1) return 0;
  static const int kTags[] = {0, 1, 2, 3, 4, 7, 8};
  auto proto = MSGUtilities::protoForTag(kTags[data[0] % 7]);
  if (!proto->ParseFromArray(data + 1, static_cast<int>(size - 1))) return 0;
  MSGUtilities::lastStreamIdForProto(*proto);
  MSGUtilities::persistentIdForProto(*proto);
  MSGUtilities::setLastStreamIdForProto(*proto, 1);
  std::string again = proto->SerializeAsString();
  auto copy = MSGUtilities::protoForTag(MSGUtilities::tagForProto(*proto));
  if (!copy->ParseFromString(again)) __builtin_trap();
  if (auto* iq = dynamic_cast<quillet::messaging::RelayIqStanza*>(proto.get()); iq && iq->has_extension()) {
    quillet::messaging::RelaySelectiveAck ack;
    ack.MergeFromString(iq->extension().data_p());
  }
  return 0;
}
