#include "platform/ui/UiEvents.h"

#include <vector>

namespace quillet::platform {

UiEvents::Token UiEvents::subscribe(Subscriber subscriber) {
  Token token = next_++;
  subscribers_[token] = std::move(subscriber);
  return token;
}

void UiEvents::unsubscribe(Token token) { subscribers_.erase(token); }

void UiEvents::emit(UiEvent event) {
  pending_.push_back(std::move(event));
  if (delivering_) return;
  delivering_ = true;
  while (!pending_.empty()) {
    UiEvent current = std::move(pending_.front());
    pending_.pop_front();
    std::vector<Token> tokens;
    for (const auto& [token, subscriber] : subscribers_) tokens.push_back(token);
    for (Token token : tokens) {
      auto it = subscribers_.find(token);
      if (it == subscribers_.end()) continue;
      auto subscriber = it->second;  // it may unsubscribe itself
      subscriber(current);
    }
  }
  delivering_ = false;
}

}  // namespace quillet::platform
