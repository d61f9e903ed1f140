#include "platform/ui/ViewController.h"

#include <algorithm>

#include "platform/log/Log.h"
#include "platform/ui/AlertController.h"
#include "platform/ui/NavigationController.h"
#include "platform/ui/Screen.h"
#include "platform/ui/UiEvents.h"
#include "platform/ui/Window.h"

namespace quillet::platform {

ViewController::ViewController(std::string identifier)
    : identifier_(std::move(identifier)), view_(std::make_shared<View>(identifier_)) {
  // A screen fills the phone's screen.
  const Screen& screen = Screen::main();
  view_->setFrame(Rect{0, 0, screen.width, screen.height});
}

ViewController::~ViewController() = default;

void ViewController::setIdentifier(std::string identifier) {
  identifier_ = std::move(identifier);
  view_->setName(identifier_);
}

const std::shared_ptr<View>& ViewController::view() {
  loadViewIfNeeded();
  return view_;
}

void ViewController::loadViewIfNeeded() {
  if (viewLoaded_) return;
  viewLoaded_ = true;
  auto keepAlive = weak_from_this().lock();
  viewDidLoad();
}

void ViewController::registerOutlet(std::string name, std::shared_ptr<View> view) {
  if (!view) return;
  if (view->name().empty()) view->setName(name);
  if (!view->superview() && view != view_) view_->addSubview(view);
  auto it = std::find_if(outlets_.begin(), outlets_.end(), [&](const auto& entry) { return entry.first == name; });
  if (it != outlets_.end()) {
    it->second = std::move(view);
  } else {
    outlets_.emplace_back(std::move(name), std::move(view));
  }
}

std::shared_ptr<View> ViewController::outletNamed(std::string_view name) const {
  for (const auto& [outletName, view] : outlets_) {
    if (outletName == name) return view;
  }
  return nullptr;
}

std::shared_ptr<ViewController> ViewController::parentViewController() const {
  return parent_ ? parent_->weak_from_this().lock() : nullptr;
}

std::shared_ptr<NavigationController> ViewController::navigationController() const {
  return std::dynamic_pointer_cast<NavigationController>(parentViewController());
}

Window* ViewController::window() const {
  if (window_) return window_;
  if (parent_) return parent_->window();
  if (auto presenter = presenting_.lock()) return presenter->window();
  return nullptr;
}

void ViewController::postUiEvent(UiEvent event) const {
  if (Window* w = window()) w->events()->emit(std::move(event));
}

void ViewController::beginAppearanceTransition(bool appearing, bool animated) {
  auto keepAlive = weak_from_this().lock();
  transitionAnimated_ = animated;
  if (appearing) {
    loadViewIfNeeded();
    appearance_ = Appearance::Appearing;
    viewWillAppear(animated);
    view_->layoutIfNeeded();
  } else {
    appearance_ = Appearance::Disappearing;
    viewWillDisappear(animated);
  }
  if (auto child = appearanceChild()) child->beginAppearanceTransition(appearing, animated);
}

void ViewController::endAppearanceTransition() {
  auto keepAlive = weak_from_this().lock();
  if (appearance_ == Appearance::Appearing) {
    appearance_ = Appearance::Appeared;
    viewDidAppear(transitionAnimated_);
  } else if (appearance_ == Appearance::Disappearing) {
    appearance_ = Appearance::Disappeared;
    viewDidDisappear(transitionAnimated_);
  }
  if (auto child = appearanceChild()) child->endAppearanceTransition();
  didEndAppearanceTransition();
}

void ViewController::presentViewController(std::shared_ptr<ViewController> screen, bool animated,
                                           std::function<void()> completion) {
  if (!screen) return;
  if (presented_) {
    Log::write("Attempt to present " + screen->identifier() + " on " + identifier_ + " which is already presenting " +
               presented_->identifier());
    return;
  }
  auto keepAlive = weak_from_this().lock();
  bool alert = screen->isAlert();
  presented_ = screen;
  screen->presenting_ = weak_from_this();
  bool onShow = isVisible();
  if (onShow) {
    screen->loadViewIfNeeded();
    if (!alert) beginAppearanceTransition(false, animated);
    screen->beginAppearanceTransition(true, animated);
  }
  UiEvent event;
  event.animated = animated;
  if (alert) {
    event.kind = UiEvent::Kind::AlertShown;
    event.screen = identifier_;
    event.text = screen->title();
    if (auto* alertController = dynamic_cast<AlertController*>(screen.get())) event.info = alertController->describe();
  } else {
    event.kind = UiEvent::Kind::ScreenPresented;
    event.screen = screen->identifier();
    event.previous = identifier_;
    event.info = screen->presentationInfo();
  }
  postUiEvent(std::move(event));
  if (onShow) {
    if (!alert) endAppearanceTransition();
    screen->endAppearanceTransition();
  }
  if (completion) completion();
}

void ViewController::dismissViewControllerAnimated(bool animated, std::function<void()> completion) {
  auto keepAlive = weak_from_this().lock();
  if (!presented_) {
    if (auto presenter = presenting_.lock()) {
      presenter->dismissViewControllerAnimated(animated, std::move(completion));
    } else if (completion) {
      completion();
    }
    return;
  }
  auto screen = presented_;
  if (screen->presented_) screen->dismissViewControllerAnimated(animated);
  bool alert = screen->isAlert();
  bool onShow = screen->isVisible();
  if (onShow) {
    screen->beginAppearanceTransition(false, animated);
    if (!alert) beginAppearanceTransition(true, animated);
  }
  UiEvent event;
  event.animated = animated;
  if (alert) {
    event.kind = UiEvent::Kind::AlertDismissed;
    event.screen = identifier_;
    event.text = screen->title();
  } else {
    event.kind = UiEvent::Kind::ScreenDismissed;
    event.screen = screen->identifier();
    event.previous = identifier_;
  }
  postUiEvent(std::move(event));
  presented_.reset();
  screen->presenting_.reset();
  if (onShow) {
    screen->endAppearanceTransition();
    if (!alert) endAppearanceTransition();
  }
  if (completion) completion();
}

std::shared_ptr<ViewController> ViewController::topScreen() {
  auto screen = shared_from_this();
  for (;;) {
    if (screen->presented_ && !screen->presented_->isAlert()) {
      screen = screen->presented_;
    } else if (auto child = screen->appearanceChild()) {
      screen = child;
    } else {
      return screen;
    }
  }
}

std::shared_ptr<ViewController> ViewController::visibleAlert() {
  std::shared_ptr<ViewController> alert;
  auto screen = shared_from_this();
  while (screen) {
    if (screen->presented_ && screen->presented_->isAlert()) alert = screen->presented_;
    if (screen->presented_ && !screen->presented_->isAlert()) {
      screen = screen->presented_;
    } else {
      screen = screen->appearanceChild();
    }
  }
  return alert;
}

}  // namespace quillet::platform
