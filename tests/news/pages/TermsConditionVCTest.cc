// The text page against the stand-in news server: which page a title asks
// for, the text on success, a blank page on failure, and back.
#include <optional>

#include "PagesTestSupport.h"
#include "news/pages/TermsConditionVC.h"
#include "platform/ui/Device.h"
#include "platform/ui/Screen.h"
#include "platform/ui/TextView.h"

namespace quillet::news {
namespace {

using platform::Value;

class TermsConditionVCTest : public testing::PagesTest {
 protected:
  std::shared_ptr<TermsConditionVC> open(std::optional<std::string> title) {
    auto page = std::make_shared<TermsConditionVC>();
    if (title) page->setStrSETTitle(*title);
    return present(page);
  }
  static std::string details(const TermsConditionVC& page) {
    return page.outlet<platform::TextView>("txtDetails")->text();
  }
  static std::string pageText(int64_t id) { return server_->store()->page(id).value()["description"].string(); }
};

TEST_F(TermsConditionVCTest, OnlyTheExactTermsTitleAsksForPageOne) {
  const std::vector<std::pair<std::optional<std::string>, std::string>> cases = {{"Terms and Condition", "1"},
                                                                                 {"Terms and Conditions", "2"},
                                                                                 {"terms and condition", "2"},
                                                                                 {"Terms and Condition ", "2"},
                                                                                 {std::nullopt, "2"}};
  for (const auto& [title, id] : cases) {
    auto page = open(title);
    EXPECT_EQ(page->parameter(), Value::dictionary({{"id", Value(id)}}));
    EXPECT_EQ(page->outlet<platform::Label>("lblTitle")->text(), title.value_or("(null)"));
    ASSERT_TRUE(waitFor([&] { return !details(*page).empty(); })) << title.value_or("nil");
    EXPECT_EQ(details(*page), pageText(id == "1" ? 1 : 2));
    EXPECT_EQ(queries("cms_App").back(), "id=" + id);
    page->outlet<platform::Button>("btnBack")->performTap(nullptr);
    EXPECT_EQ(app_->window().topScreen(), feed_);
  }
  auto last = open("Privacy Policy");
  EXPECT_EQ(last->outlet<platform::TextView>("txtDetails")->font()->name, "System-Regular");
  ASSERT_TRUE(waitFor([&] { return !details(*last).empty(); }));
}

TEST_F(TermsConditionVCTest, APadKeepsTheResourcesFontWhereAPhoneSetsItsOwn) {
  const auto resourceFont = platform::TextView("txtDetails").font();
  platform::Screen::main() = platform::Screen{768, 1024, 2};
  for (auto idiom : {platform::UserInterfaceIdiom::Pad, platform::UserInterfaceIdiom::Phone}) {
    platform::Device::current().userInterfaceIdiom = idiom;
    auto page = open("Privacy Policy");
    ASSERT_TRUE(waitFor([&] { return !details(*page).empty(); }));
    const auto font = page->outlet<platform::TextView>("txtDetails")->font();
    if (idiom == platform::UserInterfaceIdiom::Pad) {
      EXPECT_EQ(font, resourceFont);
    } else {
      EXPECT_EQ(font, (platform::Font{"System-Regular", 38}));
    }
    page->outlet<platform::Button>("btnBack")->performTap(nullptr);
  }
  platform::Screen::main() = platform::Screen{};
}

TEST_F(TermsConditionVCTest, AFailedReplyOrTransportLeavesThePageBlank) {
  server_->setFault("cms_App", backend::NewsFault{backend::NewsFault::Kind::StatusFalse});
  auto refused = open("Terms and Condition");
  ASSERT_TRUE(waitFor([&] { return log.contains("-----------"); }));
  refused->outlet<platform::Button>("btnBack")->performTap(nullptr);
  Webmanager::sharedObject().setAPIBase(kClosedPortBase);
  auto unreached = open("Privacy Policy");
  ASSERT_TRUE(waitForTransportFailure());
  loop_->runPending();
  EXPECT_EQ(details(*refused), "");
  EXPECT_EQ(details(*unreached), "");
  EXPECT_EQ(alert(), nullptr);
}

}  // namespace
}  // namespace quillet::news
