#pragma once

#include <functional>
#include <map>
#include <string>

#include "platform/value/Value.h"

namespace quillet::news {

// The object a screen hands Webmanager: operations it answers to by name,
// each taking the decoded reply (which may be nil). Screens either fill the
// table with setOperation or override the two lookups. Main thread.
class WebmanagerDelegate {
 public:
  using Operation = std::function<void(const platform::Value& reply)>;

  virtual ~WebmanagerDelegate() = default;

  void setOperation(std::string name, Operation operation) { operations_[std::move(name)] = std::move(operation); }

  virtual bool respondsToOperation(const std::string& name) const { return operations_.count(name) != 0; }
  // Runs the named operation; an unknown name does nothing.
  virtual void performOperation(const std::string& name, const platform::Value& reply);

 private:
  std::map<std::string, Operation> operations_;
};

}  // namespace quillet::news
