#pragma once

#include <string>

#include "platform/ui/View.h"

namespace quillet::platform {

// A spinner. With hidesWhenStopped (the default) it is hidden while stopped.
// Main run loop thread only.
class ActivityIndicator : public View {
 public:
  // Starts stopped, and so hidden.
  explicit ActivityIndicator(std::string name = "") : View(std::move(name)) { setHidden(true); }

  bool isAnimating() const { return animating_; }
  void startAnimating();
  void stopAnimating();
  bool hidesWhenStopped() const { return hidesWhenStopped_; }
  void setHidesWhenStopped(bool hides) { hidesWhenStopped_ = hides; }

  std::string kind() const override { return "activityIndicator"; }

 protected:
  void describeState(Value& into) const override { into.set("animating", Value(animating_)); }

 private:
  bool animating_ = false;
  bool hidesWhenStopped_ = true;
};

}  // namespace quillet::platform
