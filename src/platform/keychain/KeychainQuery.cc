#include "platform/keychain/KeychainQuery.h"

namespace quillet::platform {
namespace {

template <typename T>
bool fieldMatches(const std::optional<T>& wanted, const T& actual) {
  return !wanted || *wanted == actual;
}

}  // namespace

bool KeychainQuery::matches(const KeychainItem& item) const {
  if (!fieldMatches(itemClass, item.itemClass) || !fieldMatches(service, item.service) ||
      !fieldMatches(account, item.account) || !fieldMatches(generic, item.generic) ||
      !fieldMatches(applicationTag, item.applicationTag))
    return false;
  for (const auto& [name, value] : attributes) {
    auto it = item.attributes.find(name);
    if (it == item.attributes.end() || !(it->second == value)) return false;
  }
  return true;
}

}  // namespace quillet::platform
