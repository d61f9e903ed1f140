#include "platform/registry/ClassRegistry.h"

namespace quillet::platform {

ClassRegistry& ClassRegistry::shared() {
  static ClassRegistry* registry = new ClassRegistry();  // lives for the whole process
  return *registry;
}

void ClassRegistry::registerOperation(const std::string& className, const std::string& operation, Operation body) {
  std::lock_guard lock(mutex_);
  classes_[className][operation] = std::move(body);
}

void ClassRegistry::removeClass(std::string_view className) {
  std::lock_guard lock(mutex_);
  auto it = classes_.find(className);
  if (it != classes_.end()) classes_.erase(it);
}

bool ClassRegistry::hasClass(std::string_view className) const {
  std::lock_guard lock(mutex_);
  return classes_.find(className) != classes_.end();
}

bool ClassRegistry::respondsTo(std::string_view className, std::string_view operation) const {
  return find(className, operation).has_value();
}

std::optional<Value> ClassRegistry::call(std::string_view className, std::string_view operation,
                                         const std::vector<Value>& arguments) const {
  auto body = find(className, operation);
  if (!body) return std::nullopt;
  return (*body)(arguments);
}

std::optional<ClassRegistry::Operation> ClassRegistry::find(std::string_view className,
                                                            std::string_view operation) const {
  std::lock_guard lock(mutex_);
  auto cls = classes_.find(className);
  if (cls == classes_.end()) return std::nullopt;
  auto op = cls->second.find(operation);
  if (op == cls->second.end()) return std::nullopt;
  return op->second;
}

}  // namespace quillet::platform
