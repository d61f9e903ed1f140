#pragma once

#include <memory>
#include <string>

#include "news/api/WebmanagerDelegate.h"
#include "platform/ui/Button.h"
#include "platform/ui/TextField.h"
#include "platform/ui/TextView.h"
#include "platform/ui/ViewController.h"

namespace quillet::news {

// The reader's feedback: an address and a message, sent with "addFeedback".
// The message box is a plain text box whose hint "Please enter your
// feedback" stands in it as light grey text while it is empty; editing
// clears the hint and ending with an empty box puts it back.
//
// Submit checks, in order, with a toast for the first that fails: the
// address is empty; the address as a whole does not match kAddressPattern;
// the message is empty or the hint. A reply with "status" true shows the
// alert "Message sent successfully." and dismisses the screen; "status"
// false shows "Message failed to sent." and keeps the texts. A failed
// transport says nothing.
//
// While a text is edited the view moves up (address: half the field's
// vertical position; message: half the box's plus 10) and moves back when
// editing ends. A touch outside the texts (a tap on the root view, outlet
// "view") and Return in the address field end editing.
//
// Outlets: "txtEmail", "txtMessage", "btnSubmit", "btnBack", "view".
// Made with std::make_shared (the storyboard does); a running request holds
// it until it answers. Main thread only.
class FeedbackViewController : public platform::ViewController, public WebmanagerDelegate {
 public:
  static constexpr const char* kHint = "Please enter your feedback";
  static constexpr const char* kAddressPattern = "[A-Z0-9a-z._%+-]+@[A-Za-z0-9.-]+\\.[A-Za-z]{2,4}";
  static constexpr double kMoveSeconds = 0.3;

  FeedbackViewController();

  void btnSubmit();
  void sendSuccess(const platform::Value& reply);
  void sendFail(const platform::Value& reply);
  void btnBackTapped();
  // Ends editing of both texts (a touch outside them).
  void endEditing();

  // Whether the whole text is an address by kAddressPattern.
  static bool isValidAddress(const std::string& address);

  const std::shared_ptr<platform::TextField>& txtEmail() const { return txtEmail_; }
  const std::shared_ptr<platform::TextView>& txtMessage() const { return txtMessage_; }

 protected:
  void viewDidLoad() override;

 private:
  void textDidBeginEditing(platform::TextInput& input);
  void textDidEndEditing(platform::TextInput& input);
  // How far the view moves up while `input` is edited.
  double movementFor(const platform::TextInput& input) const;
  void moveView(double dy);
  // An alert without title with `message` and "OK" over the top screen.
  void showAlert(const std::string& message);

  std::shared_ptr<platform::TextField> txtEmail_;
  std::shared_ptr<platform::TextView> txtMessage_;
  std::shared_ptr<platform::Button> btnSubmit_;
  std::shared_ptr<platform::Button> btnBack_;
};

}  // namespace quillet::news
