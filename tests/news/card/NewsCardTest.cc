// The card as a pure mapping: texts, the date with its ordinal, media branches, the video id.
#include <gtest/gtest.h>

#include "news/card/NewsCard.h"
#include "platform/text/DeviceLocale.h"

namespace quillet::news {
namespace {

using platform::Value;

class NewsCardTest : public ::testing::Test {
 protected:
  NewsCardTest() {
    platform::DeviceLocale::setLocaleId("en_US");
    platform::DeviceLocale::setTimeZoneId("Asia/Kolkata");
  }
  ~NewsCardTest() override {
    platform::DeviceLocale::setLocaleId(std::nullopt);
    platform::DeviceLocale::setTimeZoneId(std::nullopt);
  }

  static Value item(Value::Dictionary fields) {
    Value::Dictionary base{{"id", Value("12")},
                           {"new_title", Value("Harbour lights")},
                           {"news_description", Value("Body")},
                           {"content_manger_name", Value("Ada")},
                           {"created_date", Value("2016-01-01")},
                           {"news_source_url", Value("http://example.test/s")},
                           {"news_media_type", Value("Image")},
                           {"news_image_hd", Value("http://img.test/hd.png")},
                           {"news_image_normal", Value("http://img.test/n.png")}};
    for (auto& [key, value] : fields) base[key] = value;
    return Value(std::move(base));
  }
};

TEST_F(NewsCardTest, DaysTakeTheirSuffixWithTheLeadingZero) {
  const std::pair<const char*, const char*> days[] = {
      {"2016-01-01", "01st Jan 2016"}, {"2016-01-02", "02nd Jan 2016"}, {"2016-01-03", "03rd Jan 2016"},
      {"2016-01-11", "11th Jan 2016"}, {"2016-01-12", "12th Jan 2016"}, {"2016-01-13", "13th Jan 2016"},
      {"2016-01-21", "21st Jan 2016"}, {"2016-01-22", "22nd Jan 2016"}, {"2016-01-23", "23rd Jan 2016"},
      {"2016-01-30", "30th Jan 2016"}, {"2016-03-31", "31st Mar 2016"}};
  for (const auto& [date, expected] : days) EXPECT_EQ(NewsCard::dateText(Value(date)), expected) << date;
}

TEST_F(NewsCardTest, TheDeviceLocaleNamesTheMonth) {
  EXPECT_EQ(NewsCard::dateText(Value("2016-03-01")), "01st Mar 2016");
  platform::DeviceLocale::setLocaleId("fr_FR");
  EXPECT_EQ(NewsCard::dateText(Value("2016-03-01")), "01st mars 2016");
}

TEST_F(NewsCardTest, DatesThatDoNotFitExactlyGiveNullTexts) {
  for (Value bad : {Value("2016-01-01 10:22:00"), Value("01-01-2016"), Value("2016-02-30"), Value::null(), Value(),
                    Value(int64_t{20160101})}) {
    EXPECT_EQ(NewsCard::dateText(bad), "(null)th (null)") << bad.description();
  }
}

TEST_F(NewsCardTest, TextsFollowTheNullRulesButThePostedByLineDoesNot) {
  auto card = NewsCard::make(
      item({{"new_title", Value::null()}, {"news_description", Value("")}, {"content_manger_name", Value::null()}}),
      "Day", "HD", Value::Array{});
  EXPECT_EQ(card.title, "");
  EXPECT_EQ(card.body, "");
  EXPECT_EQ(card.postedBy, "Posted By <null> | 01st Jan 2016");
  EXPECT_EQ(card.titleColor, platform::Color::blackColor());

  auto missing = NewsCard::make(Value::dictionary({{"news_media_type", Value("Image")}}), "Night", "Normal", Value());
  EXPECT_EQ(missing.title, "(null)");
  EXPECT_EQ(missing.postedBy, "Posted By (null) | (null)th (null)");
  EXPECT_EQ(missing.titleColor, platform::Color::whiteColor());
  EXPECT_EQ(missing.storyId, "(null)");
}

TEST_F(NewsCardTest, BookmarksCompareTheIdAsTheItemHoldsIt) {
  const Value ids = Value::array({Value("12"), Value("40")});
  auto text = NewsCard::make(item({}), "Night", "HD", ids);
  EXPECT_TRUE(text.bookmarked);
  EXPECT_EQ(text.titleColor, platform::Color::redColor());
  auto number = NewsCard::make(item({{"id", Value(int64_t{12})}}), "Night", "HD", ids);
  EXPECT_FALSE(number.bookmarked);
  EXPECT_EQ(number.storyId, "12");
}

TEST_F(NewsCardTest, MediaBranchesPickTheirFields) {
  auto hd = NewsCard::make(item({}), "", "HD", Value());
  EXPECT_EQ(hd.media, NewsCardContent::Media::Image);
  EXPECT_EQ(hd.imageURL, "http://img.test/hd.png");
  EXPECT_DOUBLE_EQ(hd.barAlpha, 0.7);
  EXPECT_EQ(NewsCard::make(item({}), "", "Normal", Value()).imageURL, "http://img.test/n.png");

  auto video = NewsCard::make(item({{"news_media_type", Value("Video")}}), "", "HD", Value());
  EXPECT_EQ(video.media, NewsCardContent::Media::Video);
  EXPECT_EQ(video.videoURL, "http://img.test/n.png");  // the normal field carries the video, whatever the setting
  EXPECT_DOUBLE_EQ(video.barAlpha, 1.0);

  auto inline_ = NewsCard::make(item({{"news_media_type", Value("YouTube Video")},
                                      {"news_image_normal", Value("http://v.test/watch?v=ab-C_1&t=2")}}),
                                "", "HD", Value());
  EXPECT_EQ(inline_.media, NewsCardContent::Media::InlineVideo);
  EXPECT_EQ(inline_.videoId, "ab-C_1");

  for (Value other : {Value(""), Value("image"), Value::null()}) {
    EXPECT_EQ(NewsCard::make(item({{"news_media_type", other}}), "", "HD", Value()).media,
              NewsCardContent::Media::Unchanged);
  }
}

TEST_F(NewsCardTest, VideoIdsComeFromWatchPathAndShortLinks) {
  EXPECT_EQ(NewsCard::videoIdFromLink("http://v.test/watch?v=qt009_Demo-2"), "qt009_Demo-2");
  EXPECT_EQ(NewsCard::videoIdFromLink("http://v.test/v/qt018_Demo-3?x=1"), "qt018_Demo-3");
  EXPECT_EQ(NewsCard::videoIdFromLink(std::string("https://") + NewsCard::kShortLinkHost + "/abc_DEF-1"), "abc_DEF-1");
  EXPECT_EQ(NewsCard::videoIdFromLink(std::string("HTTPS://VID.QUILLET.TEST/Xy9")), "Xy9");
  EXPECT_EQ(NewsCard::videoIdFromLink("http://v.test/watch?list=1"), "");
  EXPECT_EQ(NewsCard::videoIdFromLink("<null>"), "");
}

}  // namespace
}  // namespace quillet::news
