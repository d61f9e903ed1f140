#include "platform/ui/Window.h"

#include "platform/ui/UiEvents.h"

namespace quillet::platform {

Window::Window(std::shared_ptr<UiEvents> events) : events_(events ? std::move(events) : std::make_shared<UiEvents>()) {}

Window::~Window() {
  if (root_) root_->window_ = nullptr;
}

std::shared_ptr<ViewController> Window::topScreen() const { return root_ ? root_->topScreen() : nullptr; }

std::shared_ptr<ViewController> Window::visibleAlert() const { return root_ ? root_->visibleAlert() : nullptr; }

std::vector<std::string> Window::stackIdentifiers() const {
  return root_ ? root_->stackIdentifiers() : std::vector<std::string>{};
}

void Window::showRoot(const std::shared_ptr<ViewController>& oldRoot, const std::string& oldTop) {
  if (root_) root_->loadViewIfNeeded();
  if (oldRoot) oldRoot->beginAppearanceTransition(false, false);
  if (root_) root_->beginAppearanceTransition(true, false);
  auto top = topScreen();
  postReplaced(top ? top->identifier() : "", oldTop, stackOf(root_.get()));
  if (oldRoot) oldRoot->endAppearanceTransition();
  if (root_) root_->endAppearanceTransition();
}

void Window::postReplaced(const std::string& top, const std::string& previous, Value stack) {
  UiEvent event;
  event.kind = UiEvent::Kind::ScreenReplaced;
  event.screen = top;
  event.previous = previous;
  event.info = std::move(stack);
  events_->emit(std::move(event));
}

Value Window::stackOf(const ViewController* root) {
  Value ids = Value::array({});
  if (root) {
    for (const auto& id : root->stackIdentifiers()) ids.append(Value(id));
  }
  return ids;
}

void Window::setRootViewController(std::shared_ptr<ViewController> root) {
  if (root == root_) return;
  auto oldRoot = std::move(root_);
  std::string oldTop;
  if (oldRoot) {
    if (auto top = oldRoot->topScreen()) oldTop = top->identifier();
  }
  root_ = std::move(root);
  if (root_) root_->window_ = this;
  if (visible_) {
    showRoot(oldRoot, oldTop);
  } else if (oldRoot) {
    hiddenRoots_.push_back({oldTop, stackOf(oldRoot.get())});
  }
  if (oldRoot) oldRoot->window_ = nullptr;
  // oldRoot, and with it the old stack, is released here.
}

void Window::makeKeyAndVisible() {
  if (visible_) return;
  visible_ = true;
  std::string previous;
  for (auto& hidden : hiddenRoots_) {
    postReplaced(hidden.top, previous, std::move(hidden.stack));
    previous = hidden.top;
  }
  hiddenRoots_.clear();
  showRoot(nullptr, previous);
}

}  // namespace quillet::platform
