#include "instanceid/store/InstanceIDAuthKeychain.h"

#include "instanceid/support/InstanceIDError.h"
#include "platform/keychain/Keychain.h"

namespace quillet::instanceid {
namespace {

bool narrowsQuery(const std::string& value) { return !value.empty() && value != "*"; }

platform::Value::Bytes bytesOf(const std::string& text) { return platform::Value::Bytes(text.begin(), text.end()); }

void fill(platform::Error* error, int32_t status) {
  if (error && status != platform::Keychain::statusSuccess) *error = errorWithInstanceIDErrorCode(status);
}

}  // namespace

InstanceIDAuthKeychain::InstanceIDAuthKeychain(std::string identifier, std::shared_ptr<const InstanceIDEnvironment> env)
    : generic_(std::move(identifier)), env_(std::move(env)) {}

platform::KeychainQuery InstanceIDAuthKeychain::keychainQueryForService(const std::string& service,
                                                                        const std::string& account,
                                                                        const std::string& generic) {
  platform::KeychainQuery query;
  query.itemClass = platform::KeychainItemClass::GenericPassword;
  if (narrowsQuery(generic)) query.generic = bytesOf(generic);
  if (narrowsQuery(account)) query.account = account;
  if (narrowsQuery(service)) query.service = service;
  return query;
}

platform::KeychainQuery InstanceIDAuthKeychain::keychainQueryForService(const std::string& service,
                                                                        const std::string& account) const {
  return keychainQueryForService(service, account, generic_);
}

std::optional<std::string> InstanceIDAuthKeychain::passwordForService(const std::string& service,
                                                                      const std::string& account,
                                                                      platform::Error* error) {
  if (service.empty() || account.empty()) {
    fill(error, kStatusBadAddress);
    return std::nullopt;
  }
  std::vector<platform::KeychainItem> items;
  const int32_t status = env_->keychain->copyMatching(keychainQueryForService(service, account),
                                                      platform::Keychain::MatchLimit::One, &items);
  if (status != platform::Keychain::statusSuccess || items.empty()) {
    fill(error, status == platform::Keychain::statusSuccess ? platform::Keychain::statusItemNotFound : status);
    return std::nullopt;
  }
  return std::string(items.front().data.begin(), items.front().data.end());
}

bool InstanceIDAuthKeychain::removePasswordForService(const std::string& service, const std::string& account,
                                                      platform::Error* error) {
  if (service.empty() || account.empty()) {
    fill(error, kStatusBadAddress);
    return false;
  }
  const int32_t status = env_->keychain->deleteMatching(keychainQueryForService(service, account));
  fill(error, status);
  return status == platform::Keychain::statusSuccess || status == platform::Keychain::statusItemNotFound;
}

bool InstanceIDAuthKeychain::setPassword(const std::string& password, const std::string& service,
                                         const std::optional<std::string>& accessibility, const std::string& account,
                                         platform::Error* error) {
  if (service.empty() || account.empty() || !removePasswordForService(service, account, nullptr)) {
    fill(error, kStatusBadAddress);
    return false;
  }
  const platform::KeychainQuery query = keychainQueryForService(service, account);
  platform::KeychainItem item;
  item.itemClass = platform::KeychainItemClass::GenericPassword;
  item.service = query.service.value_or("");
  item.account = query.account.value_or("");
  item.generic = query.generic.value_or(platform::Value::Bytes());
  item.attributes["accessible"] = platform::Value(accessibility.value_or(kDefaultAccessibility));
  item.data = bytesOf(password);
  const int32_t status = env_->keychain->add(item);
  fill(error, status);
  return status == platform::Keychain::statusSuccess;
}

bool InstanceIDAuthKeychain::removeAllItemsWithError(platform::Error* error) {
  return removePasswordForService("*", "*", error);
}

}  // namespace quillet::instanceid
