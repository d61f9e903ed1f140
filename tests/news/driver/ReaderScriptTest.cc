// A reader's whole session against the stand-in news server, on virtual time:
// onboarding, the feed, swipes, bookmarks, the menu's feeds and categories,
// refresh, the settings, and the toasts with their timing.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "ServedPhoneTest.h"
#include "platform/text/RegularExpression.h"

namespace quillet::news {
namespace {

using platform::Value;

class ReaderScriptTest : public testing::ServedPhoneTest {
 protected:
  testing::PhoneRun play(const std::string& script) { return testing::playScript(phoneOptions(), script); }

  static const Value& feed(const Value& screenEvent) { return screenEvent["feed"]; }
};

TEST_F(ReaderScriptTest, AReaderOnboardsAndReadsTheNews) {
  auto run = play(
      "launch\nwait 4\nsettle\n"
      "check 6\ncheck 2\ntap btnNext\nsettle\nsettle\nscreen\n"  // categories 7 then 3
      "swipe right\nswipe left\nscreen\nswipe right\nscreen\n"
      "tap lblNewsTitle\ntap lblNewsTitle\n"
      "tap btnMenu\nscreen\nselect 5\nscreen\n"                            // Bookmarks: empty
      "tap btnMenu\nselect 4\nscreen\n"                                    // Unread
      "tap btnMenu\nselect 6\nsettle\nscreen\nselect 7\nsettle\nscreen\n"  // More, then the first category
      "tap btnRefresh\nsettle\n"
      "tap btnOption\nswitch night on\nswitch hd off\nscreen\n"
      "store-dump\nwait 30\nquit\n");
  ASSERT_EQ(run.status, 0);
  for (const Value& error : run.named("error")) ADD_FAILURE() << error["message"].string();

  const auto addUser = queries("addUser");
  ASSERT_EQ(addUser.size(), 1u);
  EXPECT_NE(addUser[0].find("fav_category=7%2C3"), std::string::npos) << addUser[0];

  const auto screens = run.named("screen");
  ASSERT_EQ(screens.size(), 9u);
  const Value& first = feed(screens[0]);
  EXPECT_EQ(first["feedMode"], Value("MyFeed"));
  EXPECT_EQ(first["count"], Value(0));
  ASSERT_GT(first["listSize"].integerValue(), 2);
  auto postedBy = platform::RegularExpression::create(
      R"(Posted By .+ \| (\d\d(st|nd|rd|th) [A-Z][a-z]{2} \d{4}|\(null\)th \(null\)))");
  ASSERT_TRUE(postedBy);
  EXPECT_TRUE(postedBy->matchesWholeText(first["card"]["postedBy"].string())) << first["card"]["postedBy"].string();
  EXPECT_EQ(feed(screens[1])["count"], Value(1));
  EXPECT_EQ(feed(screens[2])["count"], Value(0));
  EXPECT_EQ(feed(screens[3])["menu"].count(), 7u);
  EXPECT_EQ(feed(screens[4])["feedTitle"], Value("Bookmarks"));
  EXPECT_EQ(feed(screens[4])["listSize"], Value(0));
  EXPECT_EQ(feed(screens[5])["feedTitle"], Value("Unread"));
  EXPECT_EQ(feed(screens[5])["feedMode"], Value("Bookmark"));  // Unread keeps the mode before it
  EXPECT_GT(feed(screens[5])["listSize"].integerValue(), 0);
  const Value& expanded = feed(screens[6])["menu"];
  ASSERT_GT(expanded.count(), 8u);
  EXPECT_EQ(expanded.at(expanded.count() - 1), Value("Less"));
  EXPECT_EQ(feed(screens[7])["feedMode"], Value("Category"));
  EXPECT_EQ(feed(screens[7])["feedTitle"], expanded.at(7));  // row 6 is the first category
  EXPECT_EQ(feed(screens[8])["card"]["titleColor"], Value("#FFFFFFFF"));
  EXPECT_EQ(feed(screens[8])["options"].count(), 5u);
  EXPECT_EQ(feed(screens[8])["switches"],
            Value::dictionary({{"night", Value(true)}, {"hd", Value(false)}, {"notification", Value(true)}}));
  EXPECT_EQ(first["switches"]["night"], Value(false));

  // Each swipe slides the card: to the next story from the right, back from the left.
  std::vector<std::string> slides;
  for (const Value& event : run.named("transition")) {
    if (event["screen"] == Value("swipeView")) slides.push_back(event["info"]["subtype"].string());
  }
  ASSERT_GE(slides.size(), 2u);
  EXPECT_NE(std::find(slides.begin(), slides.end(), "fromRight"), slides.end());
  EXPECT_NE(std::find(slides.begin(), slides.end(), "fromLeft"), slides.end());

  // The file holds what was read: every story's columns, the cards seen marked "YES".
  const auto dumps = run.named("storeDump");
  ASSERT_EQ(dumps.size(), 1u);
  const Value& stories = dumps[0]["tables"]["news_table"];
  ASSERT_GT(stories.count(), 2u);
  EXPECT_EQ(stories.at(0)["status"], Value("YES"));
  EXPECT_EQ(stories.at(0).count(), 12u);
  EXPECT_TRUE(dumps[0]["tables"]["bookmark_table"].isArray());

  // Every toast in order, each 1.8 s after the one before at the earliest.
  std::vector<std::string> texts;
  double last = -10;
  for (const Value& toast : run.named("toast")) {
    texts.push_back(toast["text"].string());
    EXPECT_GE(toast["time"].doubleValue() - last, 1.8 - 1e-6) << toast["text"].string();
    last = toast["time"].doubleValue();
  }
  EXPECT_EQ(texts, (std::vector<std::string>{"Bookmarked", "Bookmark Removed", "No news to show.", "Please wait",
                                             "Refreshed"}));
  const auto defaults = play("defaults\n").named("defaults");
  EXPECT_EQ(defaults[0]["values"]["Mode"], Value("Night"));
  EXPECT_EQ(defaults[0]["values"]["ImageType"], Value("Normal"));
  EXPECT_FALSE(defaults[0]["values"]["UserID"].string().empty());
}

}  // namespace
}  // namespace quillet::news
