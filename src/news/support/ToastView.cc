#include "news/support/ToastView.h"

#include <deque>

#include "platform/runloop/RunLoop.h"
#include "platform/ui/Application.h"
#include "platform/ui/TextMetrics.h"
#include "platform/ui/UiEvents.h"
#include "platform/ui/ViewAnimation.h"

namespace quillet::news {

namespace {

using Queue = std::deque<std::shared_ptr<ToastView>>;

// The global queue: null while no toast waits or shows.
std::unique_ptr<Queue>& toastQueue() {
  static std::unique_ptr<Queue> queue;
  return queue;
}

const platform::Font kToastFont{"System-Regular", 14};
constexpr double kInsetX = 10;
constexpr double kInsetY = 5;
constexpr double kBottomMargin = 60;

}  // namespace

ToastView::ToastView(const std::string& text) : View("toast") {
  textLabel_ = std::make_shared<platform::Label>("textLabel");
  textLabel_->setText(text);
  textLabel_->setTextColor(platform::Color::whiteColor());
  textLabel_->setFont(kToastFont);
  setBackgroundColor(platform::Color::blackColor().withAlpha(0.7));
  setCornerRadius(5);
  setAlpha(0);
}

void ToastView::layoutInParent(const platform::View& parent) {
  platform::Rect label = platform::TextMetrics::sizeOfLine(textLabel_->text(), kToastFont);
  label.x = kInsetX;
  label.y = kInsetY;
  textLabel_->setFrame(label);
  const platform::Rect bounds = parent.frame().value_or(platform::Rect{});
  platform::Rect panel;
  panel.width = label.width + 2 * kInsetX;
  panel.height = label.height + 2 * kInsetY;
  panel.x = (bounds.width - label.width - 2 * kInsetX) / 2;
  panel.y = bounds.height - label.height - kBottomMargin;
  setFrame(panel);
}

void ToastView::toastInView(const std::shared_ptr<platform::View>& parent, const std::string& text) {
  auto toast = std::make_shared<ToastView>(text);
  toast->addSubview(toast->textLabel_);
  if (parent) toast->layoutInParent(*parent);
  toast->parent_ = parent;
  auto& queue = toastQueue();
  if (queue) {
    queue->push_back(std::move(toast));
    return;
  }
  queue = std::make_unique<Queue>();
  queue->push_back(std::move(toast));
  nextToastInView(parent);
}

void ToastView::nextToastInView(const std::shared_ptr<platform::View>& parent) {
  auto& queue = toastQueue();
  if (!queue || queue->empty()) return;
  std::shared_ptr<ToastView> toast = queue->front();
  toast->parent_ = parent;
  if (parent) parent->addSubview(toast);
  toast->onScreen_ = true;
  platform::Application::sharedApplication().events()->emit(platform::UiEvent::toast(toast->textLabel_->text()));
  platform::ViewAnimation::animateWithDuration(
      kFadeInSeconds, [toast] { toast->setAlpha(1); },
      [toast](bool) { platform::RunLoop::main().schedule(kShownSeconds, [toast] { toast->fadeToastOut(); }); });
}

void ToastView::fadeToastOut() {
  auto self = std::static_pointer_cast<ToastView>(shared_from_this());
  platform::ViewAnimation::animateWithDuration(
      kFadeOutSeconds, [self] { self->setAlpha(0); },
      [self](bool) {
        std::shared_ptr<platform::View> parent = self->parent_.lock();
        self->removeFromSuperview();
        self->onScreen_ = false;
        auto& queue = toastQueue();
        if (queue) {
          std::erase(*queue, self);
          if (!queue->empty()) {
            nextToastInView(parent);
            return;
          }
        }
        queue.reset();
      });
}

std::shared_ptr<ToastView> ToastView::current() {
  auto& queue = toastQueue();
  if (!queue || queue->empty() || !queue->front()->onScreen_) return nullptr;
  return queue->front();
}

size_t ToastView::queuedCount() {
  auto& queue = toastQueue();
  return queue ? queue->size() : 0;
}

void ToastView::dropQueue() {
  auto& queue = toastQueue();
  if (!queue) return;
  for (const auto& toast : *queue) toast->removeFromSuperview();
  queue.reset();
}

void ToastView::describeState(platform::Value& into) const {
  View::describeState(into);
  into.set("text", platform::Value(textLabel_->text()));
}

}  // namespace quillet::news
