#pragma once

#include <cstddef>
#include <deque>
#include <memory>

#include "messaging/socket/MSGPacket.h"

namespace quillet::messaging {

// The packets a socket has yet to write, in order. No lock: all use is on
// the socket's run loop.
class MSGPacketQueue {
 public:
  bool isEmpty() const { return packets_.empty(); }
  size_t count() const { return packets_.size(); }
  void push(std::shared_ptr<MSGPacket> packet) { packets_.push_back(std::move(packet)); }
  void pushHead(std::shared_ptr<MSGPacket> packet) { packets_.push_front(std::move(packet)); }
  // The front packet, removed; null when empty.
  std::shared_ptr<MSGPacket> pop();

 private:
  std::deque<std::shared_ptr<MSGPacket>> packets_;
};

}  // namespace quillet::messaging
