#include <gtest/gtest.h>
#include <httplib.h>

#include "backend/news/NewsServer.h"
#include "platform/media/MediaImageGenerator.h"
#include "platform/value/Json.h"
#include "support/TempDir.h"

namespace quillet::backend {
namespace {

TEST(NewsVideosTest, EveryVideoStoryIsServedWithRangesAndPlaysThroughTheMediaFacility) {
  testing::TempDir dir;
  NewsServerOptions options;
  options.dataDirectory = dir.path();
  NewsServer server(options);
  ASSERT_TRUE(server.start());
  httplib::Client client("127.0.0.1", server.port());
  client.set_read_timeout(5, 0);

  auto list = client.Get("/newsapp/api/showNews?category_id=");
  ASSERT_TRUE(list);
  const platform::Value stories = platform::jsonDecode(list->body);
  int videos = 0;
  for (const platform::Value& item : stories["result"].arrayItems()) {
    if (item["news_media_type"].description() != "Video") continue;
    const std::string url = item["news_image_normal"].string();
    ASSERT_EQ(url.rfind(server.baseUrl() + "/newsapp/videos/", 0), 0u) << url;
    auto reply = client.Get(url.substr(server.baseUrl().size()));
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->status, 200) << url;
    EXPECT_EQ(reply->get_header_value("Content-Type"), "video/mp4");
    ++videos;
  }
  EXPECT_GE(videos, 2);

  auto part = client.Get("/newsapp/videos/6.mp4", {{"Range", "bytes=4-11"}});
  ASSERT_TRUE(part);
  EXPECT_EQ(part->status, 206);
  EXPECT_EQ(part->body, "ftypisom");
  auto missing = client.Get("/newsapp/videos/7.mp4");
  ASSERT_TRUE(missing);
  EXPECT_EQ(missing->status, 404);

  // The card's path: over HTTP, with sound, a thumbnail at half a second.
  auto asset = platform::MediaAsset::assetWithURL(server.baseUrl() + "/newsapp/videos/12.mp4");
  EXPECT_TRUE(asset->isPlayable());
  EXPECT_NEAR(asset->duration(), 2.0, 0.05);
  platform::MediaImageGenerator generator(asset);
  generator.setAppliesPreferredTrackTransform(true);
  platform::Error error;
  auto thumbnail = generator.copyImageAtTime(0.5, nullptr, &error);
  ASSERT_TRUE(thumbnail) << error.description();
  EXPECT_EQ(thumbnail->width, 160);
  EXPECT_EQ(thumbnail->height, 120);
  auto turned =
      platform::MediaImageGenerator(platform::MediaAsset::assetWithURL(server.baseUrl() + "/newsapp/videos/42.mp4"));
  turned.setAppliesPreferredTrackTransform(true);
  auto portrait = turned.copyImageAtTime(0.5, nullptr, nullptr);
  ASSERT_TRUE(portrait);
  EXPECT_EQ(portrait->width, 120);
  server.stop();
}

}  // namespace
}  // namespace quillet::backend
