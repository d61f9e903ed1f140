#include "news/home/HomeSharing.h"

#include <string_view>
#include <utility>
#include <vector>

#include "news/home/HomeMenu.h"
#include "news/home/HomeVC.h"
#include "news/home/ShareTexts.h"
#include "platform/files/AtomicFile.h"
#include "platform/image/ImageEncoder.h"
#include "platform/log/Log.h"
#include "platform/render/ScreenRenderer.h"
#include "platform/text/PercentEscape.h"
#include "platform/ui/ActivityViewController.h"
#include "platform/ui/AlertController.h"
#include "platform/ui/Application.h"
#include "platform/ui/ComposeViewController.h"
#include "platform/ui/Device.h"
#include "platform/ui/Screen.h"
#include "platform/ui/ViewAnimation.h"
#include "platform/value/Format.h"

namespace quillet::news {

namespace {

constexpr double kPanelTransitionSeconds = 0.5;
constexpr double kJpegQuality = 1.0;

enum ShareTarget { kSocialComposer = 1, kPhotoApp = 2, kNone = 3, kChatApp = 4, kPhotoAppLocation = 5 };

platform::Application& application() { return platform::Application::sharedApplication(); }

}  // namespace

HomeSharing::HomeSharing(HomeVC& home) : home_(home) {}

void HomeSharing::connect() {
  HomeOutlets& o = home_.outlets();
  o.btnShare->setAction([this](platform::Button&) { shareButton(); });
  for (const auto& button : o.shareTypeButtons) {
    button->setAction([this](platform::Button& sender) { btnShareType(sender.tag()); });
  }
  home_.view()->setTapHandler([this] { touchesBegan(); });
}

void HomeSharing::takeScreenshot() {
  imageScreenshot_ = platform::ScreenRenderer::imageWithView(*home_.view(), platform::Screen::main().scale);
}

void HomeSharing::shareButton() {
  takeScreenshot();
  std::vector<platform::ActivityItem> items = {platform::ActivityItem::textItem(ShareTexts::kShareSheetText),
                                               platform::ActivityItem::urlItem(home_.strLink()),
                                               platform::ActivityItem::imageItem(imageScreenshot_)};
  auto sheet = std::make_shared<platform::ActivityViewController>(std::move(items));
  sheet->setExcludedActivityTypes(
      std::vector<std::string>(ShareTexts::kExcludedActivityTypes.begin(), ShareTexts::kExcludedActivityTypes.end()));
  if (platform::Device::current().userInterfaceIdiom == platform::UserInterfaceIdiom::Pad) {
    const platform::Rect bounds = home_.view()->frame().value_or(platform::Rect{});
    sheet->setPopover({platform::Rect{bounds.width / 2, bounds.height / 2, 0, 0},
                       platform::ActivityViewController::kPopoverArrowDirectionAny});
  }
  home_.presentViewController(sheet, true);
}

void HomeSharing::btnShareType(int tag) {
  takeScreenshot();
  switch (tag) {
    case kSocialComposer:
      shareToSocialComposer();
      break;
    case kPhotoApp:
      (void)application().canOpenURL(ShareTexts::kPhotoAppURL);  // asked, and the answer is not used
      break;
    case kChatApp:
      shareToChatApp();
      break;
    case kPhotoAppLocation:
      if (application().canOpenURL(ShareTexts::kPhotoAppLocationURL)) {
        application().openURL(ShareTexts::kPhotoAppLocationURL);
      }
      break;
    case kNone:
    default:
      break;
  }
}

void HomeSharing::shareToSocialComposer() {
  platform::Log::write(ShareTexts::kSocialLogLine);
  auto composer = platform::ComposeViewController::composeViewControllerForServiceType(ShareTexts::kSocialServiceType);
  composer->setInitialText(ShareTexts::kSocialInitialText);
  composer->addURL(ShareTexts::kSocialExampleLink);
  composer->addImage(imageScreenshot_);
  home_.presentViewController(composer, true);
}

std::filesystem::path HomeSharing::chatAppImagePath() const {
  return home_.environment().fileSystem->documentsDirectory() / ShareTexts::kChatAppImageFile;
}

void HomeSharing::shareToChatApp() {
  // The message is the fixed text, not the card's.
  const std::string send = platform::PercentEscape::escape(
      platform::format(ShareTexts::kChatAppSendFormat, platform::Value(ShareTexts::kChatAppMessage)),
      platform::PercentEscape::kLegacyUrlLegal);
  if (application().canOpenURL(send)) application().openURL(send);

  if (!application().canOpenURL(ShareTexts::kChatAppURL)) {
    showAlert(ShareTexts::kChatAppMissingTitle, ShareTexts::kChatAppMissingMessage, ShareTexts::kChatAppMissingButton);
    return;
  }

  // A failed write changes nothing for the reader: the menu then offers the old file.
  const std::filesystem::path path = chatAppImagePath();
  platform::Error error;
  auto jpeg = imageScreenshot_ ? platform::ImageEncoder::JPEGRepresentation(*imageScreenshot_, kJpegQuality, &error)
                               : std::nullopt;
  if (!jpeg || !platform::AtomicFile::write(
                   path, std::string_view(reinterpret_cast<const char*>(jpeg->data()), jpeg->size()), &error)) {
    platform::Log::write(platform::format("share: the screenshot was not written to %@: %@",
                                          platform::Value(path.string()),
                                          platform::Value(error.localizedDescription())));
  }

  std::string fileURL = "file://";
  fileURL += path.string();
  documentInteractionController_ = platform::DocumentInteractionController::interactionControllerWithURL(fileURL);
  documentInteractionController_->setUTI(ShareTexts::kChatAppImageUTI);
  documentInteractionController_->setDelegate(
      std::weak_ptr<platform::DocumentInteractionControllerDelegate>(shared_from_this()));
  documentInteractionController_->presentOpenInMenuFromRect(platform::Rect{}, *home_.view(), true);
}

void HomeSharing::touchesBegan() {
  HomeOutlets& o = home_.outlets();
  o.btnShare->setEnabled(true);
  o.shareView->addTransition(platform::ViewTransition{"push", "fromBottom", kPanelTransitionSeconds});
  platform::ViewAnimation::animateWithDuration(kPanelTransitionSeconds, [&o] { o.shareView->setHidden(true); });
}

void HomeSharing::btnTOSS() {
  auto mail = std::make_shared<platform::MailComposeViewController>();
  mail->setMailComposeDelegate(std::weak_ptr<platform::MailComposeViewControllerDelegate>(shared_from_this()));
  if (!platform::MailComposeViewController::canSendMail()) {
    showAlert("", "", "");
    return;
  }
  mail->setToRecipients({""});
  mail->setSubject(ShareTexts::kMailSubject);
  std::string body = ShareTexts::kMailBody;
  body += HomeMenu::kStoreLink;
  mail->setMessageBody(std::move(body), false);
  mail->setModalTransitionStyle(ShareTexts::kMailTransitionStyle);
  home_.presentViewController(mail, true);
}

void HomeSharing::mailComposeControllerDidFinishWithResult(platform::MailComposeViewController&,
                                                           platform::MailComposeResult, const platform::Error* error) {
  // The composer goes first, so that the alert is shown on the screen itself
  // (one shown on the composer would go with it).
  home_.dismissViewControllerAnimated(true);
  if (error) showAlert("", "", "");
}

void HomeSharing::showAlert(const std::string& title, const std::string& message, const std::string& button) {
  auto alert = platform::AlertController::alertControllerWithTitle(title, message);
  alert->addAction(platform::AlertAction{button, platform::AlertActionStyle::Default, nullptr});
  home_.presentViewController(alert, true);
}

}  // namespace quillet::news
