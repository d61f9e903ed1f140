#include "messaging/socket/MSGPacketQueue.h"

namespace quillet::messaging {

std::shared_ptr<MSGPacket> MSGPacketQueue::pop() {
  if (packets_.empty()) return nullptr;
  auto packet = std::move(packets_.front());
  packets_.pop_front();
  return packet;
}

}  // namespace quillet::messaging
