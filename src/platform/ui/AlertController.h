#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/ui/AlertAction.h"
#include "platform/ui/ViewController.h"

namespace quillet::platform {

enum class AlertStyle { Alert, ActionSheet };

// An alert or action sheet: title, message and actions. It is presented on
// a screen with presentViewController; the screen stays on show under it.
// Tapping an action dismisses the alert and then runs the action's handler.
// Main run loop thread only.
class AlertController : public ViewController {
 public:
  AlertController(std::string title, std::string message, AlertStyle style);
  static std::shared_ptr<AlertController> alertControllerWithTitle(std::string title, std::string message,
                                                                   AlertStyle style = AlertStyle::Alert);

  const std::string& message() const { return message_; }
  void setMessage(std::string message) { message_ = std::move(message); }
  AlertStyle preferredStyle() const { return style_; }
  void addAction(AlertAction action) { actions_.push_back(std::move(action)); }
  const std::vector<AlertAction>& actions() const { return actions_; }

  // The reader taps the first action with that title. False with a NoAlert
  // error when there is none.
  bool performActionWithTitle(const std::string& title, Error* error);

  bool isAlert() const override { return true; }
  // {"title", "message", "style": "alert"|"actionSheet", "actions": [{"title", "style"}]}
  Value describe() const;

 private:
  std::string message_;
  AlertStyle style_;
  std::vector<AlertAction> actions_;
};

}  // namespace quillet::platform
