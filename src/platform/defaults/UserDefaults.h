#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "platform/files/FileSystem.h"
#include "platform/value/Value.h"

namespace quillet::platform {

// The persisted string-keyed map of the program: one domain, kept as a
// binary property list at <root>/Library/Preferences/<domain>.plist. Every
// change is written at once, atomically, so nothing is lost at a crash. A
// file that cannot be read as a dictionary is reported in one log line and
// the store starts empty (the next change replaces the file). All operations
// are thread-safe.
class UserDefaults {
 public:
  static constexpr const char* standardDomain = "quillet";

  // Loads the domain's file under `fileSystem`'s root.
  UserDefaults(const FileSystem& fileSystem, std::string domain);

  // The process-wide store of the standard domain over FileSystem::standard().
  static UserDefaults& standardUserDefaults();

  // The stored object, or nil.
  Value objectForKey(const std::string& key) const;
  // A string, or a number's text; nullopt for anything else or absent.
  std::optional<std::string> stringForKey(const std::string& key) const;
  // Readings of numbers and strings as the phone made them: "12" gives 12,
  // "YES", "true" and non-zero numbers are true; absent gives 0 / false.
  int64_t integerForKey(const std::string& key) const;
  bool boolForKey(const std::string& key) const;
  double doubleForKey(const std::string& key) const;
  // The object when it has that type, else nullopt.
  std::optional<Value::Bytes> dataForKey(const std::string& key) const;
  std::optional<Value::Array> arrayForKey(const std::string& key) const;
  std::optional<Value::Dictionary> dictionaryForKey(const std::string& key) const;

  // Stores `value` (nil removes the key) and writes the file. A value that
  // is not a property list is refused with a log line and false; a failed
  // write is logged, keeps the change in memory and returns false.
  bool setObject(const Value& value, const std::string& key);
  bool setString(const std::string& value, const std::string& key) { return setObject(Value(value), key); }
  bool setInteger(int64_t value, const std::string& key) {
    return setObject(Value(static_cast<long long>(value)), key);
  }
  bool setBool(bool value, const std::string& key) { return setObject(Value(value), key); }
  bool setDouble(double value, const std::string& key) { return setObject(Value(value), key); }
  bool removeObjectForKey(const std::string& key) { return setObject(Value(), key); }

  Value::Dictionary dictionaryRepresentation() const;

  // Writes the file if an earlier write failed; true when the file holds the current state.
  bool synchronize();

  // Forgets every key and deletes the file, as deleting the app does.
  void reset();

  const std::filesystem::path& path() const { return path_; }

 private:
  void load();
  bool persistLocked();

  std::filesystem::path path_;
  mutable std::mutex mutex_;
  Value::Dictionary values_;
  bool dirty_ = false;
};

}  // namespace quillet::platform
