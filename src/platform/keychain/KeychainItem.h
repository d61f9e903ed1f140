#pragma once

#include <string>

#include "platform/value/Value.h"

namespace quillet::platform {

enum class KeychainItemClass { GenericPassword, Key };

// One secret item as stored: its class, the addressing attributes, any
// further attributes by name (such as "label", "keyType", "keyClass",
// "accessible"; values are property-list values) and the secret bytes.
// An empty string or byte field means the attribute is not set.
struct KeychainItem {
  KeychainItemClass itemClass = KeychainItemClass::GenericPassword;
  std::string service;
  std::string account;
  Value::Bytes generic;
  Value::Bytes applicationTag;
  Value::Dictionary attributes;
  Value::Bytes data;

  bool operator==(const KeychainItem&) const = default;
};

}  // namespace quillet::platform
