#include "platform/ui/MailComposeViewController.h"

namespace quillet::platform {

namespace {
bool& canSendMailSetting() {
  static bool canSend = false;
  return canSend;
}
}  // namespace

MailComposeViewController::MailComposeViewController() : ViewController(kIdentifier) {}

bool MailComposeViewController::canSendMail() { return canSendMailSetting(); }

void MailComposeViewController::setCanSendMail(bool canSend) { canSendMailSetting() = canSend; }

void MailComposeViewController::finishWithResult(MailComposeResult result, const Error* error) {
  auto keepAlive = shared_from_this();
  if (auto delegate = delegate_.lock()) delegate->mailComposeControllerDidFinishWithResult(*this, result, error);
}

Value MailComposeViewController::presentationInfo() const {
  Value recipients = Value::array({});
  for (const auto& recipient : toRecipients_) recipients.append(Value(recipient));
  return Value::dictionary({{"toRecipients", std::move(recipients)},
                            {"subject", Value(subject_)},
                            {"body", Value(body_)},
                            {"isHTML", Value(isHTML_)},
                            {"modalTransitionStyle", Value(modalTransitionStyle_)}});
}

}  // namespace quillet::platform
