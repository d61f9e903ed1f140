#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/ui/ViewController.h"

namespace quillet::platform {

// A stack of screens with a navigation bar; the top one is on show. It owns
// its screens: a screen taken off the stack is released unless someone else
// holds it.
//
// While the stack is on show, a change runs the lifecycle of the screens
// that leave and come: the new top's viewDidLoad (first time), the old top's
// viewWillDisappear, the new top's viewWillAppear, the old top's
// viewDidDisappear, the new top's viewDidAppear; then the event. A change
// asked for while a transition is under way (a screen that pushes from its
// viewDidLoad) runs as soon as that transition has ended. Off screen, a
// change only edits the stack.
//
// Main run loop thread only.
class NavigationController : public ViewController {
 public:
  explicit NavigationController(std::shared_ptr<ViewController> rootViewController = nullptr);
  ~NavigationController() override;

  const std::vector<std::shared_ptr<ViewController>>& viewControllers() const { return stack_; }
  std::shared_ptr<ViewController> topViewController() const;

  void pushViewController(std::shared_ptr<ViewController> screen, bool animated);
  // Pops the top unless it is the root; the popped screen, or nullptr.
  std::shared_ptr<ViewController> popViewControllerAnimated(bool animated);
  std::vector<std::shared_ptr<ViewController>> popToRootViewControllerAnimated(bool animated);
  void setViewControllers(std::vector<std::shared_ptr<ViewController>> screens, bool animated);

  bool isNavigationBarHidden() const { return navigationBarHidden_; }
  void setNavigationBarHidden(bool hidden, bool animated = false);

  std::vector<std::string> stackIdentifiers() const override;

 protected:
  std::shared_ptr<ViewController> appearanceChild() const override { return topViewController(); }
  void didEndAppearanceTransition() override { runDeferred(); }

 private:
  // Runs `change` now, or after the transition under way.
  void runOrDefer(std::function<void()> change);
  void runDeferred();
  // Replaces the stack, running the lifecycle from the old top to the new
  // top when on show, then posts `event` (its screen/previous filled in by the caller).
  void changeStack(std::vector<std::shared_ptr<ViewController>> stack, bool animated, UiEvent event);

  std::vector<std::shared_ptr<ViewController>> stack_;
  bool navigationBarHidden_ = false;
  bool changing_ = false;
  std::deque<std::function<void()>> deferred_;
};

}  // namespace quillet::platform
