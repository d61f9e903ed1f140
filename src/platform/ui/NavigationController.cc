#include "platform/ui/NavigationController.h"

#include <algorithm>

namespace quillet::platform {

NavigationController::NavigationController(std::shared_ptr<ViewController> rootViewController) {
  if (rootViewController) {
    adoptChild(*rootViewController);
    stack_.push_back(std::move(rootViewController));
  }
}

NavigationController::~NavigationController() {
  for (const auto& screen : stack_) releaseChild(*screen);
}

std::shared_ptr<ViewController> NavigationController::topViewController() const {
  return stack_.empty() ? nullptr : stack_.back();
}

std::vector<std::string> NavigationController::stackIdentifiers() const {
  std::vector<std::string> ids;
  for (const auto& screen : stack_) ids.push_back(screen->identifier());
  return ids;
}

void NavigationController::setNavigationBarHidden(bool hidden, bool) { navigationBarHidden_ = hidden; }

void NavigationController::runOrDefer(std::function<void()> change) {
  if (changing_ || isInTransition()) {
    deferred_.push_back(std::move(change));
    return;
  }
  change();
}

void NavigationController::runDeferred() {
  while (!deferred_.empty() && !changing_ && !isInTransition()) {
    auto change = std::move(deferred_.front());
    deferred_.pop_front();
    change();
  }
}

void NavigationController::changeStack(std::vector<std::shared_ptr<ViewController>> stack, bool animated,
                                       UiEvent event) {
  auto keepAlive = weak_from_this().lock();
  auto oldTop = topViewController();
  auto oldStack = std::move(stack_);
  stack_ = std::move(stack);
  for (const auto& screen : stack_) adoptChild(*screen);
  auto newTop = topViewController();
  bool onShow = isVisible() && oldTop != newTop;
  changing_ = true;
  if (onShow) {
    if (newTop) newTop->loadViewIfNeeded();
    if (oldTop) oldTop->beginAppearanceTransition(false, animated);
    if (newTop) newTop->beginAppearanceTransition(true, animated);
    if (oldTop) oldTop->endAppearanceTransition();
    if (newTop) newTop->endAppearanceTransition();
  }
  for (const auto& screen : oldStack) {
    if (std::find(stack_.begin(), stack_.end(), screen) == stack_.end()) releaseChild(*screen);
  }
  event.animated = animated;
  postUiEvent(std::move(event));
  changing_ = false;
  oldStack.clear();  // screens that left are released here, after the event
  runDeferred();
}

void NavigationController::pushViewController(std::shared_ptr<ViewController> screen, bool animated) {
  if (!screen) return;
  runOrDefer([this, screen, animated] {
    auto stack = stack_;
    stack.push_back(screen);
    UiEvent event;
    event.kind = UiEvent::Kind::ScreenPushed;
    event.screen = screen->identifier();
    if (!stack_.empty()) event.previous = stack_.back()->identifier();
    changeStack(std::move(stack), animated, std::move(event));
  });
}

std::shared_ptr<ViewController> NavigationController::popViewControllerAnimated(bool animated) {
  if (stack_.size() < 2) return nullptr;
  auto popped = stack_.back();
  runOrDefer([this, animated] {
    if (stack_.size() < 2) return;
    auto stack = stack_;
    UiEvent event;
    event.kind = UiEvent::Kind::ScreenPopped;
    event.screen = stack.back()->identifier();
    stack.pop_back();
    event.previous = stack.back()->identifier();
    changeStack(std::move(stack), animated, std::move(event));
  });
  return popped;
}

std::vector<std::shared_ptr<ViewController>> NavigationController::popToRootViewControllerAnimated(bool animated) {
  if (stack_.size() < 2) return {};
  std::vector<std::shared_ptr<ViewController>> popped(stack_.begin() + 1, stack_.end());
  runOrDefer([this, animated] {
    if (stack_.size() < 2) return;
    UiEvent event;
    event.kind = UiEvent::Kind::ScreenPopped;
    event.screen = stack_.back()->identifier();
    event.previous = stack_.front()->identifier();
    Value poppedIds = Value::array({});
    for (size_t i = stack_.size() - 1; i >= 1; --i) poppedIds.append(Value(stack_[i]->identifier()));
    event.info = std::move(poppedIds);
    changeStack({stack_.front()}, animated, std::move(event));
  });
  return popped;
}

void NavigationController::setViewControllers(std::vector<std::shared_ptr<ViewController>> screens, bool animated) {
  std::erase(screens, nullptr);
  runOrDefer([this, screens = std::move(screens), animated]() mutable {
    UiEvent event;
    event.kind = UiEvent::Kind::StackReplaced;
    if (!screens.empty()) event.screen = screens.back()->identifier();
    if (!stack_.empty()) event.previous = stack_.back()->identifier();
    Value ids = Value::array({});
    for (const auto& screen : screens) ids.append(Value(screen->identifier()));
    event.info = std::move(ids);
    changeStack(std::move(screens), animated, std::move(event));
  });
}

}  // namespace quillet::platform
