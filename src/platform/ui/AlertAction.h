#pragma once

#include <functional>
#include <string>

namespace quillet::platform {

enum class AlertActionStyle { Default, Cancel, Destructive };

// A button of an alert: its title, style and the handler run when it is
// tapped (after the alert has been dismissed). The handler must not own the
// screen that shows the alert. Plain data.
struct AlertAction {
  std::string title;
  AlertActionStyle style = AlertActionStyle::Default;
  std::function<void(const AlertAction&)> handler;
};

}  // namespace quillet::platform
