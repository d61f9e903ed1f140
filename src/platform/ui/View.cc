#include "platform/ui/View.h"

#include <algorithm>

#include "platform/ui/Application.h"
#include "platform/ui/UiError.h"
#include "platform/ui/UiEvent.h"

namespace quillet::platform {

void View::addTransition(ViewTransition transition) {
  UiEvent event;
  event.kind = UiEvent::Kind::TransitionAdded;
  event.screen = name_;
  event.text = transition.type;
  event.info = Value::dictionary({{"subtype", Value(transition.subtype)},
                                  {"duration", Value(transition.duration)},
                                  {"timingFunction", Value(transition.timingFunction)}});
  transition_ = std::move(transition);
  Application::sharedApplication().events()->emit(std::move(event));
}

View::View(std::string name) : name_(std::move(name)) {}

View::~View() {
  for (auto& child : subviews_) child->superview_ = nullptr;
}

void View::addSubview(std::shared_ptr<View> view) {
  if (!view || view.get() == this) return;
  view->removeFromSuperview();
  view->superview_ = this;
  subviews_.push_back(std::move(view));
}

void View::removeFromSuperview() {
  View* parent = superview_;
  if (!parent) return;
  superview_ = nullptr;
  auto& siblings = parent->subviews_;
  auto it = std::find_if(siblings.begin(), siblings.end(), [this](const auto& v) { return v.get() == this; });
  if (it != siblings.end()) {
    auto keep = std::move(*it);  // released after the erase, at the end of this scope
    siblings.erase(it);
  }
}

void View::setAssociatedObject(const std::string& key, std::shared_ptr<void> object) {
  if (object) {
    associatedObjects_[key] = std::move(object);
  } else {
    associatedObjects_.erase(key);
  }
}

std::shared_ptr<void> View::associatedObject(const std::string& key) const {
  auto found = associatedObjects_.find(key);
  return found == associatedObjects_.end() ? nullptr : found->second;
}

std::shared_ptr<View> View::viewWithName(std::string_view name) const {
  for (const auto& child : subviews_) {
    if (child->name_ == name) return child;
    if (auto found = child->viewWithName(name)) return found;
  }
  return nullptr;
}

bool View::isEffectivelyHidden() const {
  for (const View* v = this; v; v = v->superview_) {
    if (v->hidden_) return true;
  }
  return false;
}

void View::addSwipeHandler(SwipeDirection direction, std::function<void()> handler) {
  swipeHandlers_[direction] = std::move(handler);
}

bool View::checkInteractive(Error* error) const {
  if (isEffectivelyHidden()) return uiError(error, UiErrorCode::NotInteractive, "'" + name_ + "' is hidden");
  if (!userInteractionEnabled_) {
    return uiError(error, UiErrorCode::NotInteractive, "'" + name_ + "' does not take touches");
  }
  return true;
}

void View::runGuarded(const std::function<void()>& handler) {
  auto keepAlive = weak_from_this().lock();
  auto call = handler;  // the handler may replace itself or drop this view
  call();
}

bool View::performTap(Error* error) {
  if (!checkInteractive(error)) return false;
  if (!tapHandler_) return uiError(error, UiErrorCode::WrongKind, "'" + name_ + "' has no tap action");
  runGuarded(tapHandler_);
  return true;
}

bool View::performSwipe(SwipeDirection direction, Error* error) {
  if (!checkInteractive(error)) return false;
  auto it = swipeHandlers_.find(direction);
  if (it == swipeHandlers_.end()) {
    return uiError(error, UiErrorCode::WrongKind,
                   "'" + name_ + "' takes no " + swipeDirectionName(direction) + " swipe");
  }
  runGuarded(it->second);
  return true;
}

void View::layoutIfNeeded() {
  layoutSubviews();
  auto children = subviews_;  // layout may change the tree
  for (auto& child : children) child->layoutIfNeeded();
}

Value View::describe() const {
  Value out = Value::dictionary({{"kind", Value(kind())}, {"hidden", Value(isEffectivelyHidden())}});
  if (isEffectivelyHidden()) return out;
  if (alpha_ != 1.0) out.set("alpha", Value(alpha_));
  if (backgroundColor_) out.set("backgroundColor", Value(backgroundColor_->hex()));
  if (tag_ != 0) out.set("tag", Value(tag_));
  if (frame_) out.set("frame", frameValue(*frame_));
  if (transition_) out.set("transition", Value(transition_->type + " " + transition_->subtype));
  describeState(out);
  return out;
}

void View::describeState(Value&) const {}

const char* swipeDirectionName(SwipeDirection direction) {
  switch (direction) {
    case SwipeDirection::Left:
      return "left";
    case SwipeDirection::Right:
      return "right";
    case SwipeDirection::Up:
      return "up";
    case SwipeDirection::Down:
      return "down";
  }
  return "left";
}

}  // namespace quillet::platform
