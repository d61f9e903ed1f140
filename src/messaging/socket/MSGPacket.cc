#include "messaging/socket/MSGPacket.h"

#include <cstdio>

namespace quillet::messaging {

std::shared_ptr<MSGPacket> MSGPacket::packetWithTag(int8_t tag, std::optional<std::string> rmqId,
                                                    std::vector<uint8_t> data) {
  return std::make_shared<MSGPacket>(tag, std::move(rmqId), std::move(data));
}

std::string MSGPacket::description() const {
  char text[96];
  std::snprintf(text, sizeof text, "<Packet: Tag - %d, Length - %lu>", int(tag_),
                static_cast<unsigned long>(data_.size()));
  std::string result = text;
  if (rmqId_ && !rmqId_->empty()) {
    result.append(", RmqId - ");
    result.append(*rmqId_);
  }
  return result;
}

}  // namespace quillet::messaging
