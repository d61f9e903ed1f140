#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quillet::messaging {

// One frame waiting to go out: its tag, the serialized message and the rmq
// id of the stored copy (when it has one). Immutable.
class MSGPacket {
 public:
  static std::shared_ptr<MSGPacket> packetWithTag(int8_t tag, std::optional<std::string> rmqId,
                                                  std::vector<uint8_t> data);

  MSGPacket(int8_t tag, std::optional<std::string> rmqId, std::vector<uint8_t> data)
      : tag_(tag), rmqId_(std::move(rmqId)), data_(std::move(data)) {}

  int8_t tag() const { return tag_; }
  const std::vector<uint8_t>& data() const { return data_; }
  const std::optional<std::string>& rmqId() const { return rmqId_; }

  // "<Packet: Tag - %d, Length - %lu>", with ", RmqId - %@" when the id is not empty.
  std::string description() const;

 private:
  int8_t tag_;
  std::optional<std::string> rmqId_;
  std::vector<uint8_t> data_;
};

}  // namespace quillet::messaging
