#include "messaging/checkin/MSGAuthKeychain.h"

namespace quillet::messaging {
namespace {

constexpr const char* kErrorDomain = "com.stikri.msg";

platform::Value::Bytes bytesOf(const std::string& text) { return platform::Value::Bytes(text.begin(), text.end()); }

int32_t report(platform::Error* error, int32_t status) {
  if (error && status != platform::Keychain::statusSuccess) *error = platform::Error(kErrorDomain, status);
  return status;
}

}  // namespace

MSGAuthKeychain::MSGAuthKeychain(std::string identifier, platform::Keychain& keychain)
    : generic_(std::move(identifier)), keychain_(keychain) {}

platform::KeychainQuery MSGAuthKeychain::queryForService(const std::string& service, const std::string& account) const {
  platform::KeychainQuery query;
  query.itemClass = platform::KeychainItemClass::GenericPassword;
  query.generic = bytesOf(generic_);
  query.account = account;
  query.service = service;
  return query;
}

std::optional<std::string> MSGAuthKeychain::passwordForService(const std::string& service, const std::string& account,
                                                               platform::Error* error) const {
  if (service.empty() || account.empty()) {
    report(error, kStatusBadAddress);
    return std::nullopt;
  }
  std::vector<platform::KeychainItem> items;
  int32_t status =
      keychain_.copyMatching(queryForService(service, account), platform::Keychain::MatchLimit::One, &items);
  if (status == platform::Keychain::statusSuccess && items.empty()) status = platform::Keychain::statusItemNotFound;
  if (report(error, status) != platform::Keychain::statusSuccess) return std::nullopt;
  return std::string(items.front().data.begin(), items.front().data.end());
}

bool MSGAuthKeychain::removePasswordForService(const std::string& service, const std::string& account,
                                               platform::Error* error) {
  if (service.empty() || account.empty()) return report(error, kStatusBadAddress) == 0;
  return report(error, keychain_.deleteMatching(queryForService(service, account))) == 0;
}

bool MSGAuthKeychain::setPassword(const std::string& password, const std::string& service,
                                  const std::optional<std::string>& accessibility, const std::string& account,
                                  platform::Error* error) {
  if (password.empty() || service.empty() || account.empty()) return report(error, kStatusBadAddress) == 0;
  removePasswordForService(service, account, nullptr);
  platform::KeychainItem item;
  item.itemClass = platform::KeychainItemClass::GenericPassword;
  item.service = service;
  item.account = account;
  item.generic = bytesOf(generic_);
  item.attributes["accessible"] = platform::Value(accessibility.value_or(kDefaultAccessibility));
  item.data = bytesOf(password);
  return report(error, keychain_.add(item)) == 0;
}

}  // namespace quillet::messaging
