#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "platform/image/Image.h"
#include "platform/ui/DocumentInteractionController.h"
#include "platform/ui/MailComposeViewController.h"

namespace quillet::news {

class HomeVC;

// Passing the card on, from the feed screen: the system's share sheet (the
// share button), the panel of share targets (buttons tagged 1 to 5 in
// `shareView`), and the mail with the app's store link (the options row
// "Let Go"). Every share starts with a screenshot of the whole screen,
// kept in `imageScreenshot`. Whether a target app is installed is what the
// application's canOpenURL says.
//
// The mail composer's and the document controller's delegate for the
// screen; they hold it weakly. Owned by its HomeVC (shared, for those weak
// references) and holds the screen by reference. Main thread only.
class HomeSharing : public platform::MailComposeViewControllerDelegate,
                    public platform::DocumentInteractionControllerDelegate,
                    public std::enable_shared_from_this<HomeSharing> {
 public:
  explicit HomeSharing(HomeVC& home);

  // Screen start: the share button, the panel's buttons and the touch on the screen.
  void connect();

  // The whole screen at the main screen's scale, into `imageScreenshot`.
  void takeScreenshot();
  // The system's share sheet with the text, the card's link and the screenshot.
  void shareButton();
  // The panel: the sender's tag picks the target.
  void btnShareType(int tag);
  // A touch on the screen closes the panel.
  void touchesBegan();
  // The mail with the app's store link, or the empty alert when no mail can be sent.
  void btnTOSS();
  void mailComposeControllerDidFinishWithResult(platform::MailComposeViewController& controller,
                                                platform::MailComposeResult result,
                                                const platform::Error* error) override;

  const std::shared_ptr<const platform::Image>& imageScreenshot() const { return imageScreenshot_; }
  const std::shared_ptr<platform::DocumentInteractionController>& documentInteractionController() const {
    return documentInteractionController_;
  }
  // "<Documents>/<the chat app's image file>", overwritten by each share to the chat app.
  std::filesystem::path chatAppImagePath() const;

 private:
  void shareToSocialComposer();
  void shareToChatApp();
  void showAlert(const std::string& title, const std::string& message, const std::string& button);

  HomeVC& home_;
  std::shared_ptr<const platform::Image> imageScreenshot_;
  std::shared_ptr<platform::DocumentInteractionController> documentInteractionController_;
};

}  // namespace quillet::news
