#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/ui/MailComposeViewControllerDelegate.h"
#include "platform/ui/ViewController.h"

namespace quillet::platform {

// The system's mail composer: recipients, subject, body (plain or HTML) and
// the modal transition style it is presented with, as a number. Whether the phone can send mail at all
// is a process-wide setting the driver makes (canSendMail, default false:
// no mail account). Presenting posts "screenPresented" with
// presentationInfo() as the info; the driver ends it with finishWithResult,
// which tells the delegate. The delegate is held weakly.
// Main run loop thread only.
class MailComposeViewController : public ViewController {
 public:
  static constexpr const char* kIdentifier = "MailComposeViewController";

  MailComposeViewController();

  static bool canSendMail();
  static void setCanSendMail(bool canSend);

  void setMailComposeDelegate(std::weak_ptr<MailComposeViewControllerDelegate> delegate) {
    delegate_ = std::move(delegate);
  }
  void setToRecipients(std::vector<std::string> recipients) { toRecipients_ = std::move(recipients); }
  const std::vector<std::string>& toRecipients() const { return toRecipients_; }
  void setSubject(std::string subject) { subject_ = std::move(subject); }
  const std::string& subject() const { return subject_; }
  void setMessageBody(std::string body, bool isHTML) {
    body_ = std::move(body);
    isHTML_ = isHTML;
  }
  const std::string& messageBody() const { return body_; }
  bool isHTML() const { return isHTML_; }
  void setModalTransitionStyle(int style) { modalTransitionStyle_ = style; }
  int modalTransitionStyle() const { return modalTransitionStyle_; }

  // Phone side: the reader is done (sent, saved, cancelled, or it failed
  // with `error`); the delegate, if still there, hears of it.
  void finishWithResult(MailComposeResult result, const Error* error = nullptr);

  // {"toRecipients": [...], "subject", "body", "isHTML", "modalTransitionStyle"}.
  Value presentationInfo() const override;

 private:
  std::weak_ptr<MailComposeViewControllerDelegate> delegate_;
  std::vector<std::string> toRecipients_;
  std::string subject_;
  std::string body_;
  bool isHTML_ = false;
  int modalTransitionStyle_ = 0;
};

}  // namespace quillet::platform
