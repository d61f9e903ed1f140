// Sharing from the feed screen: screenshot, share sheet, target panel, mail.
#include <gtest/gtest.h>

#include "HomeTestSupport.h"
#include "news/home/HomeMenu.h"
#include "news/home/HomeSharing.h"
#include "news/home/ShareTexts.h"
#include "platform/files/AtomicFile.h"
#include "platform/image/BitmapPixels.h"
#include "platform/image/ImageDecoder.h"
#include "platform/image/ImageEncoder.h"
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
  std::shared_ptr<T> presented() { return std::dynamic_pointer_cast<T>(home_->presentedViewController()); }
  std::vector<std::string> kinds() const {
    std::vector<std::string> out;
    for (const auto& event : events_) out.push_back(UiEvent::kindName(event.kind));
    return out;
  }
  // The last screenshot as RGBA pixels, through PNG.
  std::shared_ptr<const platform::Bitmap> screenshotPixels() {
    auto png = platform::ImageEncoder::PNGRepresentation(*sharing().imageScreenshot());
    auto decoded = png ? platform::ImageDecoder::decode(*png) : nullptr;
    return decoded ? std::make_shared<const platform::Bitmap>(platform::BitmapPixels::rgba8(*decoded)) : nullptr;
  }

  std::vector<UiEvent> events_;  // outlives the fixture, whose teardown still posts events
  Fixture fixture_;
  std::shared_ptr<HomeVC> home_;
};

// Counts the pixels of the card's title area whose red component is above (light) or below (dark) the middle.
std::pair<int, int> titleShades(const platform::Bitmap& shot, HomeOutlets& o, double scale) {
  const platform::Rect card = *o.swipeView->frame(), title = *o.lblNewsTitle->frame();
  std::pair<int, int> shades{0, 0};
  for (int y = static_cast<int>((card.y + title.y) * scale); y < (card.y + title.y + title.height) * scale; ++y) {
    for (int x = static_cast<int>(title.x * scale); x < (title.x + title.width) * scale; ++x) {
      const uint8_t red = shot.pixels[(static_cast<size_t>(y) * static_cast<size_t>(shot.width) + static_cast<size_t>(x)) * 4];
      (red > 128 ? shades.first : shades.second)++;
    }
  }
  return shades;
}

TEST_F(HomeSharingTest, TagThreeTakesTheScreenshotInTheCardsColoursAndNothingElse) {
  const double scale = platform::Screen::main().scale;
  sharing().btnShareType(3);
  EXPECT_TRUE(events_.empty());
  ASSERT_TRUE(sharing().imageScreenshot());
  auto day = screenshotPixels();
  ASSERT_TRUE(day);
  EXPECT_EQ(day->width, static_cast<int>(platform::Screen::main().width * scale));
  EXPECT_EQ(day->height, static_cast<int>(platform::Screen::main().height * scale));

  home_->menu().changeModeSwitch(true);
  sharing().btnShareType(3);
  auto night = screenshotPixels();
  ASSERT_TRUE(night);
  const auto [dayLight, dayDark] = titleShades(*day, home_->outlets(), scale);
  const auto [nightLight, nightDark] = titleShades(*night, home_->outlets(), scale);
  EXPECT_GT(dayLight, dayDark);  // black text on white
  EXPECT_GT(dayDark, 0);
  EXPECT_GT(nightDark, nightLight);  // white text on dark grey
  EXPECT_GT(nightLight, 0);
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
  ASSERT_EQ(sheet->excludedActivityTypes().size(), 9u);
  EXPECT_EQ(sheet->excludedActivityTypes().front(), ShareTexts::kExcludedActivityTypes.front());
  EXPECT_EQ(sheet->excludedActivityTypes().back(), ShareTexts::kExcludedActivityTypes.back());
  EXPECT_FALSE(sheet->popover());
  ASSERT_EQ(kinds(), std::vector<std::string>{"screenPresented"});
  EXPECT_TRUE(events_[0].animated);
  EXPECT_EQ(events_[0].info["items"].count(), 3u);
  EXPECT_EQ(events_[0].info["excludedActivityTypes"].count(), 9u);

  home_->dismissViewControllerAnimated(false);
  platform::Device::current().userInterfaceIdiom = platform::UserInterfaceIdiom::Pad;
  sharing().shareButton();
  sheet = presented<platform::ActivityViewController>();
  ASSERT_TRUE(sheet && sheet->popover());
  EXPECT_EQ(sheet->popover()->sourceRect, (platform::Rect{platform::Screen::main().width / 2,
                                                           platform::Screen::main().height / 2, 0, 0}));
  EXPECT_EQ(sheet->popover()->permittedArrowDirections, 15u);
}

TEST_F(HomeSharingTest, TagOnePresentsTheSocialComposer) {
  sharing().btnShareType(1);
  EXPECT_TRUE(fixture_.log.contains(ShareTexts::kSocialLogLine));
  auto composer = presented<platform::ComposeViewController>();
  ASSERT_TRUE(composer);
  EXPECT_EQ(composer->serviceType(), ShareTexts::kSocialServiceType);
  EXPECT_EQ(composer->initialText(), ShareTexts::kSocialInitialText);
  ASSERT_EQ(composer->urls().size(), 1u);
  ASSERT_EQ(composer->images().size(), 1u);
  EXPECT_EQ(composer->images()[0], sharing().imageScreenshot());
  ASSERT_EQ(kinds(), std::vector<std::string>{"screenPresented"});
  EXPECT_EQ(events_[0].info["serviceType"], Value(ShareTexts::kSocialServiceType));
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
  EXPECT_EQ(alert->title(), ShareTexts::kChatAppMissingTitle);
  EXPECT_EQ(alert->message(), ShareTexts::kChatAppMissingMessage);
  ASSERT_EQ(alert->actions().size(), 1u);
  EXPECT_EQ(alert->actions()[0].title, "OK");
  EXPECT_TRUE(fixture_.app_->openedURLs().empty());
  EXPECT_FALSE(std::filesystem::exists(sharing().chatAppImagePath()));
  EXPECT_EQ(sharing().documentInteractionController(), nullptr);
}

TEST_F(HomeSharingTest, ChatAppInstalledOpensWithTheFixedMessageAndPreparesTheOpenInMenu) {
  fixture_.app_->setInstalledSchemes({ShareTexts::kChatAppScheme});
  home_->outlets().shareView->setHidden(false);
  ASSERT_TRUE(home_->outlets().shareTypeButtons[3]->performTap(nullptr));  // tag 4
  EXPECT_EQ(fixture_.app_->openedURLs(), std::vector<std::string>{std::string(ShareTexts::kChatAppScheme) + "://send?text=YOUR%20MSG"});
  EXPECT_EQ(kinds(), (std::vector<std::string>{"urlOpened", "openInMenuShown"}));

  auto jpeg = platform::AtomicFile::read(sharing().chatAppImagePath());
  ASSERT_TRUE(jpeg);
  auto info = platform::ImageDecoder::info(std::span(reinterpret_cast<const uint8_t*>(jpeg->data()), jpeg->size()));
  ASSERT_TRUE(info);
  EXPECT_EQ(info->format, "jpeg");
  EXPECT_EQ(info->width, sharing().imageScreenshot()->pixelWidth());
  EXPECT_EQ(sharing().chatAppImagePath().filename(), ShareTexts::kChatAppImageFile);

  auto menu = sharing().documentInteractionController();
  ASSERT_TRUE(menu);
  EXPECT_EQ(menu->UTI(), ShareTexts::kChatAppImageUTI);
  EXPECT_EQ(menu->URL(), "file://" + sharing().chatAppImagePath().string());
  EXPECT_TRUE(menu->isOpenInMenuShown());
  EXPECT_EQ(menu->menuRect(), platform::Rect{});
  EXPECT_EQ(events_[1].info["UTI"], Value(ShareTexts::kChatAppImageUTI));
  EXPECT_TRUE(events_[1].animated);
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

TEST_F(HomeSharingTest, MailWithTheStoreLinkOrTheEmptyAlert) {
  // Options row 0, "Let Go", with no mail account: the empty alert only.
  home_->menu().didSelectRowAtIndexPath(*home_->outlets().tblOption, platform::IndexPath::forRow(0));
  auto empty = presented<platform::AlertController>();
  ASSERT_TRUE(empty);
  EXPECT_EQ(empty->title(), "");
  EXPECT_EQ(empty->message(), "");
  ASSERT_EQ(empty->actions().size(), 1u);
  EXPECT_EQ(empty->actions()[0].title, "");
  home_->dismissViewControllerAnimated(false);

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
