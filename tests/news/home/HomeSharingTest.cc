// Sharing from the feed screen: screenshot, share sheet, target panel, mail.
#include <gtest/gtest.h>

#include "HomeTestSupport.h"
#include "news/home/HomeMenu.h"
#include "news/home/HomeSharing.h"
#include "news/home/ShareTexts.h"
#include "platform/files/AtomicFile.h"
#include "platform/image/ImageDecoder.h"
#include "platform/ui/ActivityViewController.h"
#include "platform/ui/AlertController.h"
#include "platform/ui/ComposeViewController.h"
#include "platform/ui/Device.h"
#include "platform/ui/MailComposeViewController.h"
#include "platform/ui/Screen.h"

namespace quillet::news {
namespace {

using platform::UiEvent;
using platform::Value;
using Fixture = testing::HomeFixture;

class HomeSharingTest : public ::testing::Test {
 protected:
  void SetUp() override {
    fixture_.app_->events()->subscribe([this](const UiEvent& event) {
      if (event.kind != UiEvent::Kind::Toast) events_.push_back(event);
    });
    home_ = fixture_.show();
    home_->showNewsSuccess(Fixture::reply({Fixture::story("1")}));
    events_.clear();
  }
  void TearDown() override {
    platform::Device::current().userInterfaceIdiom = platform::UserInterfaceIdiom::Phone;
    platform::MailComposeViewController::setCanSendMail(false);
  }
  HomeSharing& sharing() { return home_->sharing(); }
  template <class T>
  std::shared_ptr<T> presented() {
    return std::dynamic_pointer_cast<T>(home_->presentedViewController());
  }
  std::vector<std::string> kinds() const {
    std::vector<std::string> out;
    for (const auto& event : events_) out.push_back(UiEvent::kindName(event.kind));
    return out;
  }
  std::vector<UiEvent> events_;  // outlives the fixture, whose teardown still posts events
  Fixture fixture_;
  std::shared_ptr<HomeVC> home_;
};

// (The screenshot's colours, the phone's share sheet, the social composer and
// the store-link mail are also played end to end by the driver's content script.)
TEST_F(HomeSharingTest, TagThreeTakesTheScreenshotAndNothingElse) {
  sharing().btnShareType(3);
  EXPECT_TRUE(events_.empty());
  ASSERT_TRUE(sharing().imageScreenshot());
  EXPECT_EQ(sharing().imageScreenshot()->pixelWidth(),
            static_cast<int>(platform::Screen::main().width * platform::Screen::main().scale));
  EXPECT_EQ(home_->presentedViewController(), nullptr);
  EXPECT_TRUE(fixture_.app_->openedURLs().empty());
}

TEST_F(HomeSharingTest, ShareSheetHoldsTheItemsInOrderAndIsAPopoverOnlyOnATablet) {
  ASSERT_TRUE(home_->outlets().btnShare->performTap(nullptr));
  auto sheet = presented<platform::ActivityViewController>();
  ASSERT_TRUE(sheet);
  ASSERT_EQ(sheet->activityItems().size(), 3u);
  EXPECT_EQ(sheet->activityItems()[0].text, "QuilletNews App");
  EXPECT_EQ(sheet->activityItems()[1].kind, platform::ActivityItem::Kind::URL);
  EXPECT_EQ(sheet->activityItems()[1].text, home_->strLink());
  EXPECT_EQ(sheet->activityItems()[2].image, sharing().imageScreenshot());
  EXPECT_EQ(sheet->excludedActivityTypes().back(), ShareTexts::kExcludedActivityTypes.back());
  EXPECT_FALSE(sheet->popover());
  home_->dismissViewControllerAnimated(false);
  platform::Device::current().userInterfaceIdiom = platform::UserInterfaceIdiom::Pad;
  sharing().shareButton();
  sheet = presented<platform::ActivityViewController>();
  ASSERT_TRUE(sheet && sheet->popover());
  EXPECT_EQ(sheet->popover()->sourceRect,
            (platform::Rect{platform::Screen::main().width / 2, platform::Screen::main().height / 2, 0, 0}));
  EXPECT_EQ(sheet->popover()->permittedArrowDirections, 15u);
}

TEST_F(HomeSharingTest, TagOneLogsAndComposesWithTheScreenshot) {
  sharing().btnShareType(1);
  EXPECT_TRUE(fixture_.log.contains(ShareTexts::kSocialLogLine));
  auto composer = presented<platform::ComposeViewController>();
  ASSERT_TRUE(composer);
  EXPECT_EQ(composer->serviceType(), ShareTexts::kSocialServiceType);
  EXPECT_EQ(composer->images(), std::vector<std::shared_ptr<const platform::Image>>{sharing().imageScreenshot()});
}

TEST_F(HomeSharingTest, PhotoAppTagsOpenOnlyTheLocationAndOnlyWhenInstalled) {
  for (int tag : {2, 5, 0, 6}) sharing().btnShareType(tag);
  EXPECT_TRUE(fixture_.app_->openedURLs().empty());
  fixture_.app_->setInstalledSchemes({ShareTexts::kPhotoAppScheme});
  for (int tag : {2, 5, 0, 6}) sharing().btnShareType(tag);
  EXPECT_EQ(fixture_.app_->openedURLs(), std::vector<std::string>{ShareTexts::kPhotoAppLocationURL});
  EXPECT_EQ(home_->presentedViewController(), nullptr);
}

TEST_F(HomeSharingTest, ChatAppMissingGivesTheAlertAndWritesNothing) {
  sharing().btnShareType(4);
  auto alert = presented<platform::AlertController>();
  ASSERT_TRUE(alert);
  EXPECT_EQ(alert->message(), ShareTexts::kChatAppMissingMessage);
  EXPECT_TRUE(fixture_.app_->openedURLs().empty());
  EXPECT_FALSE(std::filesystem::exists(sharing().chatAppImagePath()));
  EXPECT_EQ(sharing().documentInteractionController(), nullptr);
}

TEST_F(HomeSharingTest, ChatAppInstalledOpensWithTheFixedMessageAndPreparesTheOpenInMenu) {
  fixture_.app_->setInstalledSchemes({ShareTexts::kChatAppScheme});
  home_->outlets().shareView->setHidden(false);
  ASSERT_TRUE(home_->outlets().shareTypeButtons[3]->performTap(nullptr));  // tag 4
  EXPECT_EQ(fixture_.app_->openedURLs(),
            std::vector<std::string>{std::string(ShareTexts::kChatAppScheme) + "://send?text=YOUR%20MSG"});
  // It asks before it opens, and asks again before the open-in menu.
  EXPECT_EQ(kinds(), (std::vector<std::string>{"canOpenURL", "urlOpened", "canOpenURL", "openInMenuShown"}));

  auto jpeg = platform::AtomicFile::read(sharing().chatAppImagePath());
  ASSERT_TRUE(jpeg);
  auto info = platform::ImageDecoder::info(std::span(reinterpret_cast<const uint8_t*>(jpeg->data()), jpeg->size()));
  ASSERT_TRUE(info);
  EXPECT_EQ(info->format, "jpeg");
  EXPECT_EQ(sharing().chatAppImagePath().filename(), ShareTexts::kChatAppImageFile);
  auto menu = sharing().documentInteractionController();
  ASSERT_TRUE(menu && menu->isOpenInMenuShown());
  EXPECT_EQ(menu->URL(), "file://" + sharing().chatAppImagePath().string());
  EXPECT_EQ(menu->menuRect(), platform::Rect{});
}

TEST_F(HomeSharingTest, ATouchClosesThePanelWithThePushTransition) {
  HomeOutlets& o = home_->outlets();
  o.btnShare->setEnabled(false);
  o.shareView->setHidden(false);
  ASSERT_TRUE(home_->view()->performTap(nullptr));
  EXPECT_TRUE(o.btnShare->isEnabled());
  EXPECT_TRUE(o.shareView->isHidden());
  EXPECT_EQ(o.shareView->transition(), (platform::ViewTransition{"push", "fromBottom", 0.5}));
}

TEST_F(HomeSharingTest, MailWithTheStoreLinkAndTheEmptyAlertOnAFailure) {
  platform::MailComposeViewController::setCanSendMail(true);
  sharing().btnTOSS();
  auto mail = presented<platform::MailComposeViewController>();
  ASSERT_TRUE(mail);
  EXPECT_EQ(mail->toRecipients(), std::vector<std::string>{""});
  EXPECT_EQ(mail->subject(), "QuilletNews App Link");
  EXPECT_EQ(mail->messageBody(),
            std::string("Hello, \n\n Please click on below link to download the App.\n\n ") + HomeMenu::kStoreLink);
  EXPECT_FALSE(mail->isHTML());
  EXPECT_EQ(mail->modalTransitionStyle(), 2);

  events_.clear();
  mail->finishWithResult(platform::MailComposeResult::Sent);
  EXPECT_EQ(kinds(), std::vector<std::string>{"screenDismissed"});
  EXPECT_TRUE(events_[0].animated);

  sharing().btnTOSS();
  events_.clear();
  const platform::Error failure("mail", 1);
  presented<platform::MailComposeViewController>()->finishWithResult(platform::MailComposeResult::Failed, &failure);
  EXPECT_EQ(kinds(), (std::vector<std::string>{"screenDismissed", "alertShown"}));
  EXPECT_EQ(events_[1].text, "");
}

}  // namespace
}  // namespace quillet::news
