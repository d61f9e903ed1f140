#include "backend/checkin/CheckinDeviceRegistry.h"

namespace quillet::backend {

CheckinDevice CheckinDeviceRegistry::issue(std::optional<uint64_t> id) {
  CheckinDevice device;
  device.id = id ? *id : random_.positive63();
  device.idText = std::to_string(device.id);
  device.secret = std::to_string(random_.positive63());
  put(device);
  return device;
}

void CheckinDeviceRegistry::put(CheckinDevice device) {
  std::lock_guard lock(mutex_);
  const std::string key = device.idText;
  devices_[key] = std::move(device);
}

bool CheckinDeviceRegistry::update(const CheckinDevice& device) {
  std::lock_guard lock(mutex_);
  auto it = devices_.find(device.idText);
  if (it == devices_.end()) return false;
  auto authTokens = std::move(it->second.authTokensBySender);
  it->second = device;
  it->second.authTokensBySender = std::move(authTokens);
  return true;
}

std::optional<CheckinDevice> CheckinDeviceRegistry::device(const std::string& idText) const {
  std::lock_guard lock(mutex_);
  auto it = devices_.find(idText);
  if (it == devices_.end()) return std::nullopt;
  return it->second;
}

std::vector<CheckinDevice> CheckinDeviceRegistry::devices() const {
  std::lock_guard lock(mutex_);
  std::vector<CheckinDevice> all;
  for (const auto& entry : devices_) all.push_back(entry.second);
  return all;
}

bool CheckinDeviceRegistry::checkCredentials(const std::string& idText, const std::string& secret) const {
  std::lock_guard lock(mutex_);
  auto it = devices_.find(idText);
  return it != devices_.end() && !secret.empty() && it->second.secret == secret;
}

std::string CheckinDeviceRegistry::issueAuthToken(const std::string& idText, const std::string& sender) {
  std::lock_guard lock(mutex_);
  auto it = devices_.find(idText);
  if (it == devices_.end()) return {};
  std::string& token = it->second.authTokensBySender[sender];
  // No ":" in the alphabet: "DeviceLogin <token>" never reads as "<id>:<secret>".
  if (token.empty()) token = random_.websafeText(64);
  return token;
}

std::optional<std::pair<std::string, std::string>> CheckinDeviceRegistry::authTokenOwner(
    const std::string& token) const {
  if (token.empty()) return std::nullopt;
  std::lock_guard lock(mutex_);
  for (const auto& [idText, device] : devices_) {
    for (const auto& [sender, issued] : device.authTokensBySender) {
      if (issued == token) return std::make_pair(idText, sender);
    }
  }
  return std::nullopt;
}

}  // namespace quillet::backend
