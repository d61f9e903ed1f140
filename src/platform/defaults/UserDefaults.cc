#include "platform/defaults/UserDefaults.h"

#include "platform/log/Log.h"
#include "platform/plist/PropertyList.h"
#include "platform/plist/PropertyListFile.h"

namespace quillet::platform {

UserDefaults::UserDefaults(const FileSystem& fileSystem, std::string domain)
    : path_(fileSystem.preferencesDirectory() / (domain + ".plist")) {
  load();
}

UserDefaults& UserDefaults::standardUserDefaults() {
  static UserDefaults instance(*FileSystem::standard(), standardDomain);
  return instance;
}

void UserDefaults::load() {
  auto value = PropertyListFile::load(path_, "defaults");
  if (!value) return;
  if (!value->isDictionary()) {
    PropertyListFile::reportDamaged(path_, "defaults");
    return;
  }
  values_ = std::move(value->dictionaryItems());
}

bool UserDefaults::persistLocked() {
  // Owner only, whatever the umask: the defaults hold the registration token ("DeviceID").
  dirty_ = !PropertyListFile::save(path_, Value(values_), "defaults", 0600);
  return !dirty_;
}

Value UserDefaults::objectForKey(const std::string& key) const {
  std::lock_guard lock(mutex_);
  auto it = values_.find(key);
  return it == values_.end() ? Value() : it->second;
}

std::optional<std::string> UserDefaults::stringForKey(const std::string& key) const {
  Value value = objectForKey(key);
  if (value.isString()) return value.string();
  if (value.isNumber()) return value.description();
  return std::nullopt;
}

int64_t UserDefaults::integerForKey(const std::string& key) const { return objectForKey(key).integerValue(); }
bool UserDefaults::boolForKey(const std::string& key) const { return objectForKey(key).boolValue(); }
double UserDefaults::doubleForKey(const std::string& key) const { return objectForKey(key).doubleValue(); }

std::optional<Value::Bytes> UserDefaults::dataForKey(const std::string& key) const {
  Value value = objectForKey(key);
  if (!value.isBytes()) return std::nullopt;
  return value.bytesData();
}

std::optional<Value::Array> UserDefaults::arrayForKey(const std::string& key) const {
  Value value = objectForKey(key);
  if (!value.isArray()) return std::nullopt;
  return std::move(value.arrayItems());
}

std::optional<Value::Dictionary> UserDefaults::dictionaryForKey(const std::string& key) const {
  Value value = objectForKey(key);
  if (!value.isDictionary()) return std::nullopt;
  return std::move(value.dictionaryItems());
}

bool UserDefaults::setObject(const Value& value, const std::string& key) {
  if (!value.isNil() && !PropertyList::isPropertyList(value)) {
    Log::writef("Refusing to store a value that is not a property list for key %s", key.c_str());
    return false;
  }
  std::lock_guard lock(mutex_);
  if (value.isNil()) {
    if (values_.erase(key) == 0 && !dirty_) return true;
  } else {
    values_.insert_or_assign(key, value);
  }
  return persistLocked();
}

Value::Dictionary UserDefaults::dictionaryRepresentation() const {
  std::lock_guard lock(mutex_);
  return values_;
}

bool UserDefaults::synchronize() {
  std::lock_guard lock(mutex_);
  return dirty_ ? persistLocked() : true;
}

void UserDefaults::reset() {
  std::lock_guard lock(mutex_);
  values_.clear();
  dirty_ = false;
  std::error_code ignored;
  std::filesystem::remove(path_, ignored);
}

}  // namespace quillet::platform
