#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "backend/checkin/CheckinDeviceRegistry.h"
#include "backend/relay/RelayFault.h"
#include "messaging/schema/Relay.pb.h"

namespace quillet::backend {

// A downstream data message the server holds for a device until the device
// has confirmed that it received it.
struct RelayHeldMessage {
  enum class State { Queued, Delivered, Received };
  std::string device;
  std::string persistentId;
  messaging::RelayDataMessageStanza stanza;
  State state = State::Queued;
  uint64_t sessionId = 0;  // the connection it was last delivered on
  int32_t streamId = 0;    // the server's stream id of that delivery
};

// A message the server received from a device.
struct RelayReceivedMessage {
  std::string device;
  int tag = 0;
  std::string persistentId;
  std::string body;  // the serialized message
};

// What the relay server holds and knows, shared by its connections and its
// admin interface: the device credentials, the downstream messages held per
// device, what devices sent, and the misbehaviour modes. Thread-safe.
class RelayMailbox {
 public:
  // A login is accepted when `credentials` has the pair or `devices` (may be
  // null; shared with the check-in server) knows that device with that secret.
  RelayMailbox(std::map<std::string, std::string> credentials, std::shared_ptr<CheckinDeviceRegistry> devices);

  void setCredential(const std::string& device, const std::string& secret);
  bool checkCredentials(const std::string& device, const std::string& secret) const;

  // Holds a data message for `device`; gives it a persistent id ("<n>"
  // counting from 1 across the server) and returns the id.
  std::string queue(const std::string& device, messaging::RelayDataMessageStanza stanza);
  // Held messages of `device` that are not received and not already
  // delivered on `sessionId`, in queueing order.
  std::vector<RelayHeldMessage> undelivered(const std::string& device, uint64_t sessionId) const;
  void markDelivered(const std::string& persistentId, uint64_t sessionId, int32_t streamId);
  // The device's stream position on `sessionId` confirms deliveries up to it.
  void confirmUpTo(uint64_t sessionId, int32_t position);
  // The device reported these ids received (at login).
  void confirmIds(const std::string& device, const std::vector<std::string>& ids);

  void record(RelayReceivedMessage message);
  std::vector<RelayHeldMessage> held() const;
  std::vector<RelayReceivedMessage> received() const;

  void setMode(RelayFault fault, bool on);
  bool hasMode(RelayFault fault) const;
  void clearModes();

 private:
  mutable std::mutex mutex_;
  std::map<std::string, std::string> credentials_;
  std::shared_ptr<CheckinDeviceRegistry> devices_;
  std::vector<RelayHeldMessage> held_;
  std::vector<RelayReceivedMessage> received_;
  std::set<RelayFault> modes_;
  uint64_t nextPersistentId_ = 1;
};

}  // namespace quillet::backend
