#include "backend/news/NewsMisbehaviour.h"

namespace quillet::backend {

std::optional<NewsFault::Kind> NewsFault::kindNamed(std::string_view name) {
  if (name == "none") return Kind::None;
  if (name == "status_false") return Kind::StatusFalse;
  if (name == "html") return Kind::HtmlBody;
  if (name == "not_found") return Kind::NotFound;
  if (name == "drop") return Kind::Drop;
  return std::nullopt;
}

void NewsMisbehaviour::setFault(const std::string& method, NewsFault fault) {
  std::lock_guard lock(mutex_);
  if (fault.isNormal()) {
    faults_.erase(method);
  } else {
    faults_[method] = fault;
  }
}

void NewsMisbehaviour::clear() {
  std::lock_guard lock(mutex_);
  faults_.clear();
}

NewsFault NewsMisbehaviour::faultFor(const std::string& method) const {
  std::lock_guard lock(mutex_);
  if (auto it = faults_.find(method); it != faults_.end()) return it->second;
  if (auto it = faults_.find(""); it != faults_.end()) return it->second;
  return {};
}

}  // namespace quillet::backend
