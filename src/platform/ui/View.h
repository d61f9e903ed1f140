#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ui/Color.h"
#include "platform/ui/Rect.h"
#include "platform/ui/ViewTransition.h"
#include "platform/value/Error.h"
#include "platform/value/Value.h"

namespace quillet::platform {

enum class SwipeDirection { Left, Right, Up, Down };

// The base of every visible element: a name (the outlet name a screen gives
// it), hidden flag, alpha, background colour, optional frame, a tag, and
// subviews. A view owns its subviews (shared_ptr) and knows its superview by
// a plain pointer that the superview clears when it lets go.
//
// Views are made with std::make_shared and used on the main run loop thread
// only. A view may carry a tap handler and swipe handlers (the gesture
// recognisers a screen attaches); handlers must not own the screen that owns
// the view (capture `this` or a weak_ptr).
class View : public std::enable_shared_from_this<View> {
 public:
  explicit View(std::string name = "");
  virtual ~View();
  View(const View&) = delete;
  View& operator=(const View&) = delete;

  const std::string& name() const { return name_; }
  void setName(std::string name) { name_ = std::move(name); }
  bool isHidden() const { return hidden_; }
  void setHidden(bool hidden) { hidden_ = hidden; }
  double alpha() const { return alpha_; }
  void setAlpha(double alpha) { alpha_ = alpha; }
  const std::optional<Color>& backgroundColor() const { return backgroundColor_; }
  void setBackgroundColor(std::optional<Color> color) { backgroundColor_ = color; }
  const std::optional<Rect>& frame() const { return frame_; }
  void setFrame(std::optional<Rect> frame) { frame_ = frame; }
  int tag() const { return tag_; }
  void setTag(int tag) { tag_ = tag; }
  double cornerRadius() const { return cornerRadius_; }
  void setCornerRadius(double radius) { cornerRadius_ = radius; }
  // The last transition added to the view's layer, if any. Adding one posts
  // "transition" to the shared application's event stream, as the phone's
  // animation system plays it.
  const std::optional<ViewTransition>& transition() const { return transition_; }
  void addTransition(ViewTransition transition);
  bool isUserInteractionEnabled() const { return userInteractionEnabled_; }
  void setUserInteractionEnabled(bool enabled) { userInteractionEnabled_ = enabled; }

  // Adds `view` at the end, taking it from its old superview first.
  void addSubview(std::shared_ptr<View> view);
  void removeFromSuperview();
  const std::vector<std::shared_ptr<View>>& subviews() const { return subviews_; }
  View* superview() const { return superview_; }
  // The first descendant (depth first, in order) with that name, or nullptr.
  std::shared_ptr<View> viewWithName(std::string_view name) const;
  // Hidden itself or below a hidden ancestor.
  bool isEffectivelyHidden() const;

  // Gestures. A tap handler makes a non-control view tappable.
  void setTapHandler(std::function<void()> handler) { tapHandler_ = std::move(handler); }
  void addSwipeHandler(SwipeDirection direction, std::function<void()> handler);

  // Objects that other layers attach to a view (a running image load, ...),
  // owned by the view until replaced; a null object removes the key.
  void setAssociatedObject(const std::string& key, std::shared_ptr<void> object);
  // The object under `key`, or null.
  std::shared_ptr<void> associatedObject(const std::string& key) const;

  // What a finger does, as the driver asks for it. False with a ui error when
  // the view is hidden, not interactive or has nothing to do for the gesture.
  virtual bool performTap(Error* error);
  bool performSwipe(SwipeDirection direction, Error* error);

  // The layout pass, run when the owning screen is about to appear: calls
  // layoutSubviews() on this view and then on every subview.
  void layoutIfNeeded();

  // The kind name shown in snapshots ("view", "label", "button", ...).
  virtual std::string kind() const { return "view"; }
  // {"kind", "hidden"} and, when not hidden, the view's state: alpha and
  // background colour when set, then what the kind adds.
  Value describe() const;

 protected:
  virtual void layoutSubviews() {}
  // Adds the kind's own state to a snapshot dictionary.
  virtual void describeState(Value& into) const;
  // Checks that a finger can reach this view; sets a NotInteractive error otherwise.
  bool checkInteractive(Error* error) const;
  // Runs `handler` while keeping this view alive, so that a handler that
  // tears down the screen does not destroy the view under its own call.
  void runGuarded(const std::function<void()>& handler);

 private:
  std::string name_;
  bool hidden_ = false;
  double alpha_ = 1.0;
  std::optional<ViewTransition> transition_;
  std::optional<Color> backgroundColor_;
  std::optional<Rect> frame_;
  int tag_ = 0;
  double cornerRadius_ = 0;
  bool userInteractionEnabled_ = true;
  std::vector<std::shared_ptr<View>> subviews_;
  View* superview_ = nullptr;
  std::function<void()> tapHandler_;
  std::map<SwipeDirection, std::function<void()>> swipeHandlers_;
  std::map<std::string, std::shared_ptr<void>> associatedObjects_;
};

const char* swipeDirectionName(SwipeDirection direction);

}  // namespace quillet::platform
