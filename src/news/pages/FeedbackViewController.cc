#include "news/pages/FeedbackViewController.h"

#include "news/api/Webmanager.h"
#include "news/support/ScaledFont.h"
#include "news/support/ToastView.h"
#include "platform/text/RegularExpression.h"
#include "platform/ui/AlertController.h"
#include "platform/ui/Application.h"
#include "platform/ui/Screen.h"
#include "platform/ui/ViewAnimation.h"
#include "platform/ui/Window.h"
#include "platform/value/Format.h"

namespace quillet::news {

using platform::Value;

namespace {

constexpr const char* kSendSuccess = "sendSuccess:";
constexpr const char* kSendFail = "sendFail:";

// The form's layout as the screen's resource places it.
constexpr double kMargin = 20;
constexpr double kEmailTop = 150;
constexpr double kEmailHeight = 40;
constexpr double kMessageTop = 220;
constexpr double kMessageHeight = 180;
constexpr double kSubmitTop = 420;
constexpr double kButtonHeight = 44;

}  // namespace

FeedbackViewController::FeedbackViewController() : ViewController("FeedbackViewController") {
  const double width = platform::Screen::main().width - 2 * kMargin;
  txtEmail_ = std::make_shared<platform::TextField>("txtEmail");
  txtEmail_->setPlaceholder("Email");
  txtEmail_->setFrame(platform::Rect{kMargin, kEmailTop, width, kEmailHeight});
  txtMessage_ = std::make_shared<platform::TextView>("txtMessage");
  txtMessage_->setFrame(platform::Rect{kMargin, kMessageTop, width, kMessageHeight});
  btnSubmit_ = std::make_shared<platform::Button>("btnSubmit");
  btnSubmit_->setTitle("Submit");
  btnSubmit_->setFrame(platform::Rect{kMargin, kSubmitTop, width, kButtonHeight});
  btnBack_ = std::make_shared<platform::Button>("btnBack");
  btnBack_->setTitle("Back");
  registerOutlet("txtEmail", txtEmail_);
  registerOutlet("txtMessage", txtMessage_);
  registerOutlet("btnSubmit", btnSubmit_);
  registerOutlet("btnBack", btnBack_);
  setOperation(kSendSuccess, [this](const Value& reply) { sendSuccess(reply); });
  setOperation(kSendFail, [this](const Value& reply) { sendFail(reply); });
}

void FeedbackViewController::viewDidLoad() {
  txtMessage_->setBorderColor(platform::Color::blackColor());
  txtMessage_->setText(kHint);
  txtMessage_->setTextColor(platform::Color::lightGrayColor());
  if (ScaledFont::screensSetFonts()) txtEmail_->setFont(ScaledFont::scaledSystemFontWithStyle(7, 16));

  auto began = [this](platform::TextInput& input) { textDidBeginEditing(input); };
  auto ended = [this](platform::TextInput& input) { textDidEndEditing(input); };
  for (platform::TextInput* input :
       {static_cast<platform::TextInput*>(txtEmail_.get()), static_cast<platform::TextInput*>(txtMessage_.get())}) {
    input->setDidBeginEditing(began);
    input->setDidEndEditing(ended);
  }
  txtEmail_->setShouldReturn([](platform::TextInput& input) { input.endEditing(); });
  btnSubmit_->setAction([this](platform::Button&) { btnSubmit(); });
  btnBack_->setAction([this](platform::Button&) { btnBackTapped(); });
  view()->setTapHandler([this] { endEditing(); });
  registerOutlet("view", view());
}

// --- editing ---

void FeedbackViewController::textDidBeginEditing(platform::TextInput& input) {
  if (&input == txtMessage_.get() && txtMessage_->text() == kHint) {
    txtMessage_->setText("");
    txtMessage_->setTextColor(platform::Color::blackColor());
  }
  moveView(-movementFor(input));
}

void FeedbackViewController::textDidEndEditing(platform::TextInput& input) {
  if (&input == txtMessage_.get() && txtMessage_->text().empty()) {
    txtMessage_->setText(kHint);
    txtMessage_->setTextColor(platform::Color::lightGrayColor());
  }
  moveView(movementFor(input));
}

double FeedbackViewController::movementFor(const platform::TextInput& input) const {
  const double top = input.frame() ? input.frame()->y : 0;
  return &input == txtMessage_.get() ? top / 2 + 10 : top / 2;
}

void FeedbackViewController::moveView(double dy) {
  const auto& root = view();
  const platform::Rect frame = root->frame().value_or(platform::Rect{});
  platform::ViewAnimation::animateWithDuration(kMoveSeconds, [&] { root->setFrame(frame.offsetBy(0, dy)); });
}

void FeedbackViewController::endEditing() {
  txtEmail_->endEditing();
  txtMessage_->endEditing();
}

// --- sending ---

bool FeedbackViewController::isValidAddress(const std::string& address) {
  static const auto pattern = platform::RegularExpression::create(kAddressPattern);
  return pattern && pattern->matchesWholeText(address);
}

void FeedbackViewController::btnSubmit() {
  const std::string email = platform::format("%@", txtEmail_->text());
  const std::string message = platform::format("%@", txtMessage_->text());
  const char* problem = nullptr;
  if (email.empty()) {
    problem = "Please enter email id.";
  } else if (!isValidAddress(email)) {
    problem = "Please enter valid email id.";
  } else if (message.empty() || message == kHint) {
    problem = "Please enter feedback.";
  }
  if (problem) {
    ToastView::toastInView(view(), problem);
    return;
  }
  auto delegate = std::shared_ptr<WebmanagerDelegate>(shared_from_this(), static_cast<WebmanagerDelegate*>(this));
  Webmanager::sharedObject().sendRequestWithUrl(
      "addFeedback", Value::dictionary({{"email", Value(email)}, {"feedback", Value(message)}}), std::move(delegate),
      kSendSuccess, kSendFail);
}

void FeedbackViewController::sendSuccess(const Value&) {
  // The alert stands on its own: it stays over whatever the dismissal uncovers.
  dismissViewControllerAnimated(true);
  showAlert("Message sent successfully.");
}

void FeedbackViewController::sendFail(const Value&) { showAlert("Message failed to sent."); }

void FeedbackViewController::btnBackTapped() { dismissViewControllerAnimated(true); }

void FeedbackViewController::showAlert(const std::string& message) {
  auto top = platform::Application::sharedApplication().window().topScreen();
  if (!top) top = shared_from_this();
  auto alert = platform::AlertController::alertControllerWithTitle("", message);
  alert->addAction(platform::AlertAction{"OK", platform::AlertActionStyle::Default, nullptr});
  top->presentViewController(alert, true);
}

}  // namespace quillet::news
