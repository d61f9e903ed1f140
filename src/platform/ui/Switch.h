#pragma once

#include <functional>

#include "platform/ui/View.h"

namespace quillet::platform {

// An on/off switch. setOn() is the program setting it and sends nothing;
// performSetOn() is the reader flipping it and sends the action on every
// change of value. Main run loop thread only.
class Switch : public View {
 public:
  using Action = std::function<void(Switch& sender)>;
  using View::View;

  bool isOn() const { return on_; }
  void setOn(bool on) { on_ = on; }
  bool isEnabled() const { return enabled_; }
  void setEnabled(bool enabled) { enabled_ = enabled; }
  void setAction(Action action) { action_ = std::move(action); }

  // Fails when hidden or disabled; a flip to the value it has sends nothing.
  bool performSetOn(bool on, Error* error);

  std::string kind() const override { return "switch"; }

 protected:
  void describeState(Value& into) const override;

 private:
  bool on_ = false;
  bool enabled_ = true;
  Action action_;
};

}  // namespace quillet::platform
