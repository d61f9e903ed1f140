#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/ui/NavigationItem.h"
#include "platform/ui/UiEvent.h"
#include "platform/ui/View.h"

namespace quillet::platform {

class NavigationController;
class Storyboard;
class UiEvents;
class Window;

// A screen: its storyboard identifier ("HomeVC"), a title, a root view, the
// outlets it registers by name ("lblTitle", "btnRefresh"), and the
// lifecycle hooks that the navigation machinery calls. Screens subclass it
// and override the hooks.
//
// Lifecycle: viewDidLoad runs once, the first time the view is needed (at
// the latest just before the screen first appears). Each appearance runs
// viewWillAppear then viewDidAppear; each disappearance viewWillDisappear
// then viewDidDisappear. Animations are not played: the animated flag is
// passed on and recorded in events, and every transition completes at once.
//
// Ownership: screens are made with std::make_shared. A container owns its
// children (a navigation stack its screens, a presenter the screen it
// presents, the window its root); children know their container by a plain pointer that it clears, so
// dropping a stack releases its screens. Actions and handlers that a screen
// gives its controls must not own the screen (capture `this` or a weak_ptr).
//
// Main run loop thread only.
class ViewController : public std::enable_shared_from_this<ViewController> {
 public:
  explicit ViewController(std::string identifier = "");
  virtual ~ViewController();
  ViewController(const ViewController&) = delete;
  ViewController& operator=(const ViewController&) = delete;

  const std::string& identifier() const { return identifier_; }
  // Also names the root view after the screen.
  void setIdentifier(std::string identifier);
  const std::string& title() const { return title_; }
  void setTitle(std::string title) { title_ = std::move(title); }
  NavigationItem& navigationItem() { return navigationItem_; }
  const NavigationItem& navigationItem() const { return navigationItem_; }

  // The root view, loading it (viewDidLoad) the first time.
  const std::shared_ptr<View>& view();
  bool isViewLoaded() const { return viewLoaded_; }
  void loadViewIfNeeded();

  // Outlets: named controls of the screen. A registered view with no
  // superview is added to the root view. A name registered again replaces
  // the old outlet.
  void registerOutlet(std::string name, std::shared_ptr<View> view);
  std::shared_ptr<View> outletNamed(std::string_view name) const;
  template <class T>
  std::shared_ptr<T> outlet(std::string_view name) const {
    return std::dynamic_pointer_cast<T>(outletNamed(name));
  }
  // In registration order.
  const std::vector<std::pair<std::string, std::shared_ptr<View>>>& outlets() const { return outlets_; }

  // Containers.
  std::shared_ptr<ViewController> parentViewController() const;
  // The stack this screen stands in (directly), or nullptr.
  std::shared_ptr<NavigationController> navigationController() const;
  std::shared_ptr<ViewController> presentedViewController() const { return presented_; }
  std::shared_ptr<ViewController> presentingViewController() const { return presenting_.lock(); }
  // The window this screen is shown in, through its containers; nullptr off screen.
  Window* window() const;
  // The storyboard that made this screen (for making the next ones), or nullptr.
  const std::shared_ptr<Storyboard>& storyboard() const { return storyboard_; }
  void setStoryboard(std::shared_ptr<Storyboard> storyboard) { storyboard_ = std::move(storyboard); }

  // Presents `screen` over this one. A full screen disappears under it; an
  // alert is shown over it and the screen stays. A screen that already
  // presents another refuses, with a log line.
  void presentViewController(std::shared_ptr<ViewController> screen, bool animated,
                             std::function<void()> completion = {});
  // Dismisses what this screen presents; on a presented screen, asks its presenter.
  void dismissViewControllerAnimated(bool animated, std::function<void()> completion = {});

  // The screen the reader sees when this one is on show: what it presents
  // (alerts aside), else its stack's top, followed down.
  std::shared_ptr<ViewController> topScreen();
  // The alert presented at the top of that chain, or nullptr.
  std::shared_ptr<ViewController> visibleAlert();
  // The identifiers of the stack this screen stands for (itself for a plain screen).
  virtual std::vector<std::string> stackIdentifiers() const { return {identifier_}; }
  virtual bool isAlert() const { return false; }
  // What a "screenPresented" event carries as its info (nil: nothing), so a
  // driver can see what a presented sheet or composer holds.
  virtual Value presentationInfo() const { return Value(); }

  // Appearance transitions, driven by containers: begin(true) loads the view
  // if needed, runs viewWillAppear and lays the view out; end() runs the
  // matching did-hook. Children of a container follow it.
  void beginAppearanceTransition(bool appearing, bool animated);
  void endAppearanceTransition();
  // True between viewDidAppear and viewWillDisappear.
  bool isVisible() const { return appearance_ == Appearance::Appeared; }
  bool isInTransition() const {
    return appearance_ == Appearance::Appearing || appearance_ == Appearance::Disappearing;
  }

 protected:
  virtual void viewDidLoad() {}
  virtual void viewWillAppear(bool /*animated*/) {}
  virtual void viewDidAppear(bool /*animated*/) {}
  virtual void viewWillDisappear(bool /*animated*/) {}
  virtual void viewDidDisappear(bool /*animated*/) {}

  // The child that appears and disappears with this screen (a stack's top).
  virtual std::shared_ptr<ViewController> appearanceChild() const { return nullptr; }
  // Runs after endAppearanceTransition has finished, children included.
  virtual void didEndAppearanceTransition() {}

  // Containers link their children to themselves.
  // The container keeps the link until it lets the child go or dies.
  void adoptChild(ViewController& child) { child.parent_ = this; }
  void releaseChild(ViewController& child) {
    if (child.parent_ == this) child.parent_ = nullptr;
  }
  // Sends the event to the window's stream when this screen is in a window.
  void postUiEvent(UiEvent event) const;

 private:
  friend class Window;
  enum class Appearance { Disappeared, Appearing, Appeared, Disappearing };

  std::string identifier_;
  std::string title_;
  NavigationItem navigationItem_;
  std::shared_ptr<View> view_;
  bool viewLoaded_ = false;
  std::vector<std::pair<std::string, std::shared_ptr<View>>> outlets_;
  ViewController* parent_ = nullptr;  // the container, which owns this screen
  std::weak_ptr<ViewController> presenting_;
  std::shared_ptr<ViewController> presented_;
  std::shared_ptr<Storyboard> storyboard_;
  Window* window_ = nullptr;  // set by the window on its root only
  Appearance appearance_ = Appearance::Disappeared;
  bool transitionAnimated_ = false;
};

}  // namespace quillet::platform
