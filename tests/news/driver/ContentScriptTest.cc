// The content pages, sharing, the card's player and the screenshot, played
// against the stand-in news server on virtual time.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "ServedPhoneTest.h"
#include "platform/image/BitmapPixels.h"
#include "platform/image/ImageDecoder.h"

namespace quillet::news {
namespace {

using platform::Value;

constexpr const char* kOnboard = "launch\nwait 4\nsettle\ncheck 1\ntap btnNext\nsettle\nsettle\n";

class ContentScriptTest : public testing::ServedPhoneTest {
 protected:
  void SetUp() override {
    ServedPhoneTest::SetUp();
    phone_ = std::make_unique<testing::InteractivePhone>(phoneOptions());
  }
  void TearDown() override {
    phone_.reset();
    ServedPhoneTest::TearDown();
  }

  // Plays `script`; any "error" event fails the test.
  testing::PhoneRun play(const std::string& script) {
    auto run = phone_->play(script);
    for (const Value& error : run.named("error")) ADD_FAILURE() << error["message"].string();
    return run;
  }
  Value screen() { return play("screen\n").named("screen").at(0); }

  static std::shared_ptr<const platform::Bitmap> decodeFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    platform::Error error;
    auto bitmap = platform::ImageDecoder::decode(bytes, &error);
    EXPECT_TRUE(bitmap) << path << ": " << error.description();
    return bitmap ? std::make_shared<const platform::Bitmap>(platform::BitmapPixels::rgba8(*bitmap)) : nullptr;
  }

  std::unique_ptr<testing::InteractivePhone> phone_;
};

TEST_F(ContentScriptTest, TextPagesFeedbackAndTheFullStory) {
  play(kOnboard);
  const Value terms = play("tap btnOption\nselect 3\nsettle\nwait 1\nscreen\n").named("screen").at(0)["page"];
  EXPECT_EQ(terms["title"], Value("Terms and Condition"));
  EXPECT_EQ(terms["text"], (*server_->store()->page(1))["description"]);
  const Value privacy = play("tap btnBack\nwait 1\nselect 4\nsettle\nwait 1\nscreen\n").named("screen").at(0)["page"];
  EXPECT_EQ(privacy["title"], Value("Privacy Policy"));
  EXPECT_EQ(privacy["text"], (*server_->store()->page(2))["description"]);
  const auto pages = queries("cms_App");
  ASSERT_EQ(pages.size(), 2u);
  EXPECT_NE(pages[0].find("id=1"), std::string::npos) << pages[0];
  EXPECT_NE(pages[1].find("id=2"), std::string::npos) << pages[1];

  // Feedback: the hint goes while the message is edited, the view moves up,
  // a bad address is refused with a toast, a good one is sent and stored.
  const Value editingScreen = play(
                                  "tap btnBack\nwait 1\nselect 2\nwait 1\ntype txtEmail not-an-address\n"
                                  "begin-edit txtMessage\nwait 1\nscreen\n")
                                  .named("screen")
                                  .at(0);
  const Value& editing = editingScreen["page"];
  // The move shows in the frames: the form's view goes up by the offset; its fields stay put within it.
  EXPECT_EQ(editingScreen["snapshot"]["viewFrame"]["y"].doubleValue(), -editing["viewOffset"].doubleValue());
  EXPECT_TRUE(editingScreen["snapshot"]["outlets"]["txtEmail"]["frame"].isDictionary());
  EXPECT_EQ(editing["editing"], Value("txtMessage"));
  EXPECT_EQ(editing["message"], Value(""));
  EXPECT_GT(editing["viewOffset"].doubleValue(), 0);
  const Value left = play("end-edit txtMessage\nwait 1\nscreen\n").named("screen").at(0)["page"];
  EXPECT_EQ(left["hintShown"], Value(true));
  EXPECT_EQ(left["viewOffset"], Value(0.0));
  auto refused = play("type txtMessage Lovely ferries\ntap btnSubmit\nwait 3\n");
  ASSERT_EQ(refused.named("toast").size(), 1u);
  EXPECT_EQ(refused.named("toast")[0]["text"], Value("Please enter valid email id."));
  // Return in the address ends its editing; a typed address keeps its blanks.
  const auto keys = play("begin-edit txtEmail\nreturn txtEmail\nscreen\ntype txtEmail  spaced@example.org \nscreen\n")
                        .named("screen");
  ASSERT_EQ(keys.size(), 2u);
  EXPECT_EQ(keys[0]["page"]["editing"], Value(""));
  EXPECT_EQ(keys[1]["page"]["email"], Value(" spaced@example.org "));
  auto sent = play("type txtEmail reader@example.org\ntap btnSubmit\nsettle\nwait 1\nalert-tap OK\n");
  ASSERT_EQ(sent.named("alertShown").size(), 1u);
  EXPECT_EQ(sent.named("alertShown")[0]["info"]["message"], Value("Message sent successfully."));
  EXPECT_EQ(server_->store()->feedback(), Value::array({Value::dictionary({{"email", Value("reader@example.org")},
                                                                           {"feedback", Value("Lovely ferries")}})}));

  // The full story: the card's link, loaded, with the overlay gone.
  const Value story =
      play("tap btnHideOption\nwait 1\ntap btnFullStory\nsettle\nwait 1\nscreen\n").named("screen").at(0)["page"];
  EXPECT_NE(story["url"].string().find("/newsapp/story/"), std::string::npos) << story["url"].string();
  EXPECT_EQ(story["loading"], Value(false));
  EXPECT_EQ(story["overlay"]["labelText"], Value("Loading....."));
  EXPECT_EQ(story["overlay"]["shown"], Value(false));
  EXPECT_EQ(play("tap btnBack\nwait 1\n").named("screenPopped").size(), 1u);
}

TEST_F(ContentScriptTest, SharingThePlayerAndTheScreenshot) {
  play(kOnboard);
  auto shared = play(
      "tap btnShare\nclose-sheet\nwait 1\nshare 1\nclose-sheet\nwait 1\nshare 2\nshare 3\n"
      "share 4\nalert-tap OK\nwait 1\n");
  ASSERT_EQ(shared.named("alertShown").size(), 1u);  // the chat app is not installed
  EXPECT_EQ(shared.named("alertShown")[0]["text"], Value("WhatsApp not installed."));
  EXPECT_TRUE(shared.named("urlOpened").empty());
  auto sheets = shared.named("screenPresented");
  ASSERT_EQ(sheets.size(), 2u);
  EXPECT_EQ(sheets[0]["screen"], Value("ActivityViewController"));
  EXPECT_EQ(sheets[0]["info"]["excludedActivityTypes"].count(), 9u);
  EXPECT_EQ(sheets[0]["info"]["items"].count(), 3u);
  EXPECT_EQ(sheets[1]["info"]["initialText"], Value("First post from my iPhone app"));
  EXPECT_EQ(sheets[1]["info"]["images"].at(0), Value("<Image 750x1334 @2x>"));

  auto installed = play("installed-apps whatsapp,instagram\nshare 4\nshare 5\n");
  std::vector<std::string> opened;
  for (const Value& url : installed.named("urlOpened")) opened.push_back(url["text"].string());
  EXPECT_EQ(opened, (std::vector<std::string>{"whatsapp://send?text=YOUR%20MSG", "instagram://location?id=1"}));
  ASSERT_EQ(installed.named("openInMenuShown").size(), 1u);
  EXPECT_EQ(installed.named("openInMenuShown")[0]["info"]["UTI"], Value("net.whatsapp.image"));
  auto chatImage = decodeFile(phoneDir_.path() / "Documents" / "whatsAppTmp.wai");
  ASSERT_TRUE(chatImage);
  EXPECT_EQ(chatImage->width, 750);

  // "Let Go": the empty alert without a mail account, the composer with one.
  auto mail = play(
      "tap btnOption\nselect 0\nalert-tap \nwait 1\nmail-account on\nselect 0\nwait 1\n"
      "mail-finish sent\nwait 1\ntap btnHideOption\nwait 1\n");
  ASSERT_EQ(mail.named("alertShown").size(), 1u);
  EXPECT_EQ(mail.named("alertShown")[0]["info"]["message"], Value(""));
  ASSERT_EQ(mail.named("screenPresented").size(), 1u);
  EXPECT_EQ(mail.named("screenPresented")[0]["info"]["subject"], Value("QuilletNews App Link"));
  EXPECT_EQ(mail.named("screenDismissed").size(), 1u);

  // The card of the video site's story: its player hears the page's events.
  Value media;
  for (int swipes = 0; swipes < 8; ++swipes) {
    media = screen()["feed"]["card"]["media"];
    if (media["kind"] == Value("inlineVideo")) break;
    play("swipe left\nsettle\nwait 1\n");
  }
  ASSERT_EQ(media["kind"], Value("inlineVideo"));
  EXPECT_EQ(media["videoId"], Value("qt009_Demo-2"));
  EXPECT_EQ(media["ready"], Value(true));  // the page's own onReady
  EXPECT_FALSE(media["origin"].string().empty());
  EXPECT_TRUE(media["scripts"].isArray());
  media = play(
              "page-event onStateChange 1\npage-event onPlaybackQualityChange hd720\npage-event onPlayTime 12.5\n"
              "screen\n")
              .named("screen")
              .at(0)["feed"]["card"]["media"];
  EXPECT_EQ(media["state"], Value("playing"));
  EXPECT_EQ(media["quality"], Value("hd720"));
  EXPECT_EQ(media["playTime"], Value(12.5));
  media = play("page-event onError 150\npage-event onStateChange 9\nscreen\n")
              .named("screen")
              .at(0)["feed"]["card"]["media"];
  EXPECT_EQ(media["error"], Value("notEmbeddable"));
  EXPECT_EQ(media["state"], Value("unknown"));

  // The title's pixels change with night mode; the picture has the screen's size in pixels.
  const auto day = phoneDir_.path() / "day.png";
  const auto night = phoneDir_.path() / "night.png";
  play("screenshot " + day.string() + "\ntap btnOption\nswitch night on\ntap btnHideOption\nwait 1\n" + "screenshot " +
       night.string() + "\n");
  auto dayShot = decodeFile(day);
  auto nightShot = decodeFile(night);
  ASSERT_TRUE(dayShot && nightShot);
  EXPECT_EQ(dayShot->width, 750);
  EXPECT_EQ(dayShot->height, 1334);
  // The title label: x 12..363, y 64 + 225 + 8 .. +56 points, at scale 2.
  int differing = 0;
  for (int y = 2 * 297; y < 2 * 353; ++y) {
    for (int x = 24; x < 2 * 363; ++x) {
      const size_t at = static_cast<size_t>(y) * dayShot->bytesPerRow() + static_cast<size_t>(x) * 4;
      if (dayShot->pixels[at] != nightShot->pixels[at]) ++differing;
    }
  }
  EXPECT_GT(differing, 1000);
  EXPECT_EQ(phone_->play("screenshot /nonexistent-dir/x.png\n").named("error").size(), 1u);
}

}  // namespace
}  // namespace quillet::news
