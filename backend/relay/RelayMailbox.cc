#include "backend/relay/RelayMailbox.h"

#include <algorithm>

namespace quillet::backend {

using State = RelayHeldMessage::State;

RelayMailbox::RelayMailbox(std::map<std::string, std::string> credentials,
                           std::shared_ptr<CheckinDeviceRegistry> devices)
    : credentials_(std::move(credentials)), devices_(std::move(devices)) {}

void RelayMailbox::setCredential(const std::string& device, const std::string& secret) {
  std::lock_guard lock(mutex_);
  credentials_[device] = secret;
}

bool RelayMailbox::checkCredentials(const std::string& device, const std::string& secret) const {
  {
    std::lock_guard lock(mutex_);
    auto it = credentials_.find(device);
    if (it != credentials_.end() && it->second == secret) return true;
  }
  return devices_ && devices_->checkCredentials(device, secret);
}

std::string RelayMailbox::queue(const std::string& device, messaging::RelayDataMessageStanza stanza) {
  std::lock_guard lock(mutex_);
  RelayHeldMessage message;
  message.device = device;
  message.persistentId = std::to_string(nextPersistentId_++);
  stanza.set_persistentid(message.persistentId);
  message.stanza = std::move(stanza);
  held_.push_back(std::move(message));
  return held_.back().persistentId;
}

std::vector<RelayHeldMessage> RelayMailbox::undelivered(const std::string& device, uint64_t sessionId) const {
  std::lock_guard lock(mutex_);
  std::vector<RelayHeldMessage> out;
  for (const auto& message : held_) {
    if (message.device != device || message.state == State::Received) continue;
    if (message.state == State::Delivered && message.sessionId == sessionId) continue;
    out.push_back(message);
  }
  return out;
}

void RelayMailbox::markDelivered(const std::string& persistentId, uint64_t sessionId, int32_t streamId) {
  std::lock_guard lock(mutex_);
  for (auto& message : held_) {
    if (message.persistentId == persistentId && message.state != State::Received) {
      message.state = State::Delivered;
      message.sessionId = sessionId;
      message.streamId = streamId;
    }
  }
}

void RelayMailbox::confirmUpTo(uint64_t sessionId, int32_t position) {
  std::lock_guard lock(mutex_);
  for (auto& message : held_) {
    if (message.state == State::Delivered && message.sessionId == sessionId && message.streamId <= position) {
      message.state = State::Received;
    }
  }
}

void RelayMailbox::confirmIds(const std::string& device, const std::vector<std::string>& ids) {
  std::lock_guard lock(mutex_);
  for (auto& message : held_) {
    if (message.device == device && std::find(ids.begin(), ids.end(), message.persistentId) != ids.end()) {
      message.state = State::Received;
    }
  }
}

void RelayMailbox::record(RelayReceivedMessage message) {
  std::lock_guard lock(mutex_);
  received_.push_back(std::move(message));
}

std::vector<RelayHeldMessage> RelayMailbox::held() const {
  std::lock_guard lock(mutex_);
  return held_;
}

std::vector<RelayReceivedMessage> RelayMailbox::received() const {
  std::lock_guard lock(mutex_);
  return received_;
}

void RelayMailbox::setMode(RelayFault fault, bool on) {
  std::lock_guard lock(mutex_);
  if (on)
    modes_.insert(fault);
  else
    modes_.erase(fault);
}

bool RelayMailbox::hasMode(RelayFault fault) const {
  std::lock_guard lock(mutex_);
  return modes_.count(fault) > 0;
}

void RelayMailbox::clearModes() {
  std::lock_guard lock(mutex_);
  modes_.clear();
}

}  // namespace quillet::backend
