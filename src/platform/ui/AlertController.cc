#include "platform/ui/AlertController.h"

#include "platform/ui/UiError.h"

namespace quillet::platform {

namespace {
const char* actionStyleName(AlertActionStyle style) {
  switch (style) {
    case AlertActionStyle::Default:
      return "default";
    case AlertActionStyle::Cancel:
      return "cancel";
    case AlertActionStyle::Destructive:
      return "destructive";
  }
  return "default";
}
}  // namespace

AlertController::AlertController(std::string title, std::string message, AlertStyle style)
    : ViewController("Alert"), message_(std::move(message)), style_(style) {
  setTitle(std::move(title));
}

std::shared_ptr<AlertController> AlertController::alertControllerWithTitle(std::string title, std::string message,
                                                                           AlertStyle style) {
  return std::make_shared<AlertController>(std::move(title), std::move(message), style);
}

bool AlertController::performActionWithTitle(const std::string& title, Error* error) {
  for (const auto& action : actions_) {
    if (action.title != title) continue;
    auto keepAlive = shared_from_this();
    AlertAction tapped = action;  // the handler may change the alert
    dismissViewControllerAnimated(true);
    if (tapped.handler) tapped.handler(tapped);
    return true;
  }
  return uiError(error, UiErrorCode::NoAlert, "the alert has no action '" + title + "'");
}

Value AlertController::describe() const {
  Value actions = Value::array({});
  for (const auto& action : actions_) {
    actions.append(
        Value::dictionary({{"title", Value(action.title)}, {"style", Value(actionStyleName(action.style))}}));
  }
  return Value::dictionary({{"title", Value(title())},
                            {"message", Value(message_)},
                            {"style", Value(style_ == AlertStyle::Alert ? "alert" : "actionSheet")},
                            {"actions", std::move(actions)}});
}

}  // namespace quillet::platform
