#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/ui/ViewController.h"

namespace quillet::platform {

class UiEvents;

// The application window: it owns its root screen (usually a navigation
// stack) and the event stream the screens in it post to. Replacing the root
// drops the old one wholesale: its stack and what it presents are released
// unless held elsewhere. Main run loop thread only.
class Window {
 public:
  explicit Window(std::shared_ptr<UiEvents> events);
  ~Window();
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  const std::shared_ptr<ViewController>& rootViewController() const { return root_; }
  // When the window is visible, the new root appears and the old one
  // disappears (new viewDidLoad first), and "screenReplaced" is posted
  // between the will- and did-hooks, so that changes made by the new
  // screens while appearing follow it in the stream.
  void setRootViewController(std::shared_ptr<ViewController> root);
  // Shows the window and its root (which appears, posting "screenReplaced").
  // Roots set and replaced before the window showed are reported first, in
  // the order they were set, each as a "screenReplaced" of its own.
  void makeKeyAndVisible();
  bool isVisible() const { return visible_; }

  // The screen the reader sees (the root followed down), or nullptr.
  std::shared_ptr<ViewController> topScreen() const;
  // The alert on show, or nullptr.
  std::shared_ptr<ViewController> visibleAlert() const;
  // The identifiers of the root's stack, bottom first.
  std::vector<std::string> stackIdentifiers() const;

  const std::shared_ptr<UiEvents>& events() const { return events_; }

 private:
  void showRoot(const std::shared_ptr<ViewController>& oldRoot, const std::string& oldTop);
  void postReplaced(const std::string& top, const std::string& previous, Value stack);
  static Value stackOf(const ViewController* root);

  // A root that was set and replaced while the window was hidden: its top and stack then.
  struct HiddenRoot {
    std::string top;
    Value stack;
  };
  std::vector<HiddenRoot> hiddenRoots_;

  std::shared_ptr<UiEvents> events_;
  std::shared_ptr<ViewController> root_;
  bool visible_ = false;
};

}  // namespace quillet::platform
