#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/value/Value.h"

namespace quillet::platform {

// Classes and their operations looked up by name at run time. A service that
// may be absent from the program (measurement, for messaging) registers its
// entry points here when it starts; a caller asks by name and does nothing
// when the class or the operation is not there. Thread-safe; operations are
// called outside the registry's lock, on the caller's thread.
class ClassRegistry {
 public:
  using Operation = std::function<Value(const std::vector<Value>& arguments)>;

  // The process's registry.
  static ClassRegistry& shared();

  ClassRegistry() = default;
  ClassRegistry(const ClassRegistry&) = delete;
  ClassRegistry& operator=(const ClassRegistry&) = delete;

  // Adds or replaces `operation` of `className`.
  void registerOperation(const std::string& className, const std::string& operation, Operation body);
  // Forgets the class and all its operations.
  void removeClass(std::string_view className);

  bool hasClass(std::string_view className) const;
  bool respondsTo(std::string_view className, std::string_view operation) const;
  // Calls the operation; nullopt when the class or operation is absent.
  std::optional<Value> call(std::string_view className, std::string_view operation,
                            const std::vector<Value>& arguments = {}) const;

 private:
  std::optional<Operation> find(std::string_view className, std::string_view operation) const;

  mutable std::mutex mutex_;
  std::map<std::string, std::map<std::string, Operation, std::less<>>, std::less<>> classes_;
};

}  // namespace quillet::platform
