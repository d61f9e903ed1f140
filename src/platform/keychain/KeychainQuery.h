#pragma once

#include <optional>
#include <string>

#include "platform/keychain/KeychainItem.h"

namespace quillet::platform {

// Selects keychain items. A field left unset matches any value of it (so an
// empty query matches every item); a set field must equal the item's. Each
// entry of `attributes` must be present in the item with an equal value.
struct KeychainQuery {
  std::optional<KeychainItemClass> itemClass;
  std::optional<std::string> service;
  std::optional<std::string> account;
  std::optional<Value::Bytes> generic;
  std::optional<Value::Bytes> applicationTag;
  Value::Dictionary attributes;

  bool matches(const KeychainItem& item) const;
};

}  // namespace quillet::platform
