#pragma once

#include "platform/value/Error.h"

namespace quillet::platform {

class MailComposeViewController;

// How the mail composer ended: the reader cancelled, saved a draft, sent, or the send failed.
enum class MailComposeResult { Cancelled = 0, Saved = 1, Sent = 2, Failed = 3 };

// Told when the reader is done with the mail composer; the delegate
// dismisses it. `error` is null when there was none. Main run loop thread.
class MailComposeViewControllerDelegate {
 public:
  virtual ~MailComposeViewControllerDelegate() = default;
  virtual void mailComposeControllerDidFinishWithResult(MailComposeViewController& controller, MailComposeResult result,
                                                        const Error* error) = 0;
};

}  // namespace quillet::platform
