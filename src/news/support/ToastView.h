#pragma once

#include <memory>
#include <string>

#include "platform/ui/Label.h"
#include "platform/ui/View.h"

namespace quillet::news {

// A short message over a screen: a rounded dark panel around one white line.
// Every toast of the process waits in one global queue and they are shown
// strictly one at a time in order of arrival: each fades in over 0.5 s,
// stays 1.0 s, fades out over 0.3 s, and then the next one follows on the
// parent of the one before it. None is dropped or replaced.
//
// The queue holds the toasts; a parent is held weakly (a toast whose parent
// went away runs its timing unseen). Each toast that comes on screen is told
// to the application's event stream as a "toast" event. Main thread only.
class ToastView : public platform::View {
 public:
  static constexpr double kFadeInSeconds = 0.5;
  static constexpr double kShownSeconds = 1.0;
  static constexpr double kFadeOutSeconds = 0.3;

  // Makes a toast for `parent` and queues it; starts the queue when none runs.
  static void toastInView(const std::shared_ptr<platform::View>& parent, const std::string& text);
  // Shows the first toast of the queue in `parent`.
  static void nextToastInView(const std::shared_ptr<platform::View>& parent);
  // The toast on screen now (fading in, shown or fading out), or nullptr.
  static std::shared_ptr<ToastView> current();
  // Toasts queued, the one on screen included; 0 when there is no queue.
  static size_t queuedCount();
  // Drops the queue and its toasts, as a new process starts with none.
  static void dropQueue();

  explicit ToastView(const std::string& text);

  void fadeToastOut();
  const std::shared_ptr<platform::Label>& textLabel() const { return textLabel_; }

  std::string kind() const override { return "toast"; }

 protected:
  void describeState(platform::Value& into) const override;

 private:
  // Sizes the panel to its label and places it at the bottom centre of `parent`.
  void layoutInParent(const platform::View& parent);

  std::shared_ptr<platform::Label> textLabel_;
  std::weak_ptr<platform::View> parent_;
  bool onScreen_ = false;
};

}  // namespace quillet::news
