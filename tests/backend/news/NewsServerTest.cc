#include <gtest/gtest.h>
#include <httplib.h>

#include <chrono>
#include <set>

#include "backend/news/NewsServer.h"
#include "platform/value/Json.h"
#include "support/LogCapture.h"
#include "support/TempDir.h"

namespace quillet::backend {
namespace {

using platform::Value;

class NewsServerTest : public ::testing::Test {
 protected:
  void SetUp() override { startServer(); }

  void startServer() {
    NewsServerOptions options;
    options.dataDirectory = dir_.path();
    server_ = std::make_unique<NewsServer>(options);
    ASSERT_TRUE(server_->start());
    ASSERT_GT(server_->port(), 0);
    client_ = std::make_unique<httplib::Client>("127.0.0.1", server_->port());
    client_->set_url_encode(false);
    client_->set_read_timeout(5, 0);
  }

  // GET of an API method with a raw query ("" for none); the decoded body.
  Value call(const std::string& methodAndQuery, int expectedStatus = 200) {
    auto result = client_->Get("/newsapp/api/" + methodAndQuery);
    EXPECT_TRUE(result) << methodAndQuery;
    if (!result) return Value();
    EXPECT_EQ(result->status, expectedStatus) << methodAndQuery << " " << result->body;
    return platform::jsonDecode(result->body);
  }

  std::set<std::string> idsOf(const Value& items) {
    std::set<std::string> ids;
    for (const Value& item : items.arrayItems()) ids.insert(item["id"].string());
    return ids;
  }

  void control(const std::string& json) {
    auto result = client_->Post("/_control", json, "application/json");
    ASSERT_TRUE(result);
    ASSERT_EQ(result->status, 200) << result->body;
  }

  testing::TempDir dir_;
  std::unique_ptr<NewsServer> server_;
  std::unique_ptr<httplib::Client> client_;
};

TEST_F(NewsServerTest, NewsListsCarryEveryItemKeyWithTextIdsNullsAndAllMediaTypes) {
  Value all = call("showNews?category_id=");
  EXPECT_TRUE(all["status"].boolValue());
  ASSERT_GE(all["result"].count(), 60u);
  std::set<std::string> mediaTypes;
  bool sawNull = false, sawTimePart = false;
  for (const Value& item : all["result"].arrayItems()) {
    for (const char* key :
         {"id", "new_title", "news_description", "created_date", "content_manger_name", "added_by_user_id",
          "added_by_user", "news_image_hd", "news_image_normal", "news_media_type", "news_source_url"}) {
      ASSERT_FALSE(item[key].isNil()) << key;
      sawNull = sawNull || item[key].isNull();
    }
    EXPECT_TRUE(item["id"].isString());
    mediaTypes.insert(item["news_media_type"].string());
    sawTimePart = sawTimePart || item["created_date"].string().size() > 10;
    if (item["news_image_normal"].isString() && item["news_media_type"].string() == "Image") {
      EXPECT_EQ(item["news_image_normal"].string().rfind(server_->baseUrl() + "/newsapp/images/", 0), 0u);
    }
  }
  EXPECT_EQ(mediaTypes, (std::set<std::string>{"Image", "Video", "YouTube Video"}));
  EXPECT_TRUE(sawNull);
  EXPECT_TRUE(sawTimePart);

  Value categories = call("getAllCategory");
  ASSERT_GE(categories["result"].count(), 8u);
  EXPECT_EQ(categories["result"].at(0)["image"].string().rfind(server_->baseUrl(), 0), 0u);
  EXPECT_TRUE(categories["result"].at(0)["name"].isString());

  Value featured = call("getFeaturedNews");
  EXPECT_TRUE(featured["status"].boolValue());
  EXPECT_GT(featured["result"].count(), 0u);
  EXPECT_LT(featured["result"].count(), all["result"].count());
  EXPECT_TRUE(call("getMostPopularNews")["status"].boolValue());
  EXPECT_EQ(call("showNews?category_id=9")["result"].count(), 0u);  // a category with no stories yet

  EXPECT_FALSE(call("cms_App?id=1")["result"]["description"].string().empty());
  EXPECT_NE(call("cms_App?id=2")["result"]["description"], call("cms_App?id=1")["result"]["description"]);
}

TEST_F(NewsServerTest, AddUserGivesAnIdWhoseFeedIsTheFavouriteCategoriesAndSurvivesARestart) {
  Value added = call("addUser?device_id=dev-1&device_token=%28null%29&fav_category=7,3");
  ASSERT_TRUE(added["status"].boolValue());
  const std::string userId = added["user_id"].description();

  std::set<std::string> expected = idsOf(call("showNews?category_id=7")["result"]);
  for (const std::string& id : idsOf(call("showNews?category_id=3")["result"])) expected.insert(id);
  EXPECT_EQ(idsOf(call("showNews?id=" + userId)["result"]), expected);

  server_->stop();
  startServer();
  EXPECT_EQ(idsOf(call("showNews?id=" + userId)["result"]), expected);
  EXPECT_FALSE(call("showNews?id=987654")["status"].boolValue());  // well-formed but unknown

  // The same device again keeps its user with the new favourites; phones with no device id are each new.
  Value again = call("addUser?device_id=dev-1&device_token=t2&fav_category=3");
  EXPECT_EQ(again["user_id"].description(), userId);
  EXPECT_EQ(idsOf(call("showNews?id=" + userId)["result"]), idsOf(call("showNews?category_id=3")["result"]));
  const Value first = call("addUser?device_id=%28null%29&device_token=x&fav_category=3");
  const Value second = call("addUser?device_id=%28null%29&device_token=x&fav_category=3");
  EXPECT_NE(first["user_id"].description(), second["user_id"].description());
}

TEST_F(NewsServerTest, RequestsTheClientShouldNotSendAreRefused) {
  for (const char* bad :
       {"showNews", "showNews?id=1&category_id=2", "showNews?category_id=x", "showNews?id=%28null%29",
        "getAllCategory?", "getFeaturedNews?page=2", "addUser?device_id=a&device_token=b",
        "addUser?device_id=a&device_token=b&fav_category=7,", "addFeedback?email=someone&feedback=hi",
        "addFeedback?email=a@b.cd&feedback=", "cms_App?id=one", "setReadCount?id=1&id=2", "setReadCount?id"}) {
    Value reply = call(bad, 400);
    EXPECT_TRUE(reply["status"].isBool() && !reply["status"].boolValue()) << bad;
    EXPECT_TRUE(reply["message"].isString()) << bad;
  }
  call("noSuchMethod", 404);
  EXPECT_FALSE(call("addUser?device_id=a&device_token=b&fav_category=77")["status"].boolValue());
  EXPECT_EQ(server_->store()->recordedRequests().back().status, 200);
}

TEST_F(NewsServerTest, ReadCountsAreStoredAndEveryRequestIsRecorded) {
  const int64_t before = *server_->store()->readCount(5);
  EXPECT_TRUE(call("setReadCount?id=5")["status"].boolValue());
  EXPECT_TRUE(call("setReadCount?id=5")["status"].boolValue());
  EXPECT_EQ(*server_->store()->readCount(5), before + 2);
  EXPECT_FALSE(call("setReadCount?id=4040")["status"].boolValue());

  auto recorded = server_->store()->recordedRequests();
  ASSERT_EQ(recorded.size(), 3u);
  EXPECT_EQ(recorded[0].method, "GET");
  EXPECT_EQ(recorded[0].path, "/newsapp/api/setReadCount");
  EXPECT_EQ(recorded[0].query, "id=5");
  EXPECT_GT(recorded[0].time, 0);
}

TEST_F(NewsServerTest, MisbehaviourSwitchesApplyToOneMethodOrToAll) {
  testing::LogCapture quiet;
  server_->setFault("getAllCategory", {NewsFault::Kind::StatusFalse, 0});
  Value refused = call("getAllCategory");
  EXPECT_FALSE(refused["status"].boolValue());
  EXPECT_GT(refused["result"].count(), 0u);  // the body stays
  EXPECT_TRUE(call("getFeaturedNews")["status"].boolValue());

  control(R"({"fault": "html"})");
  auto html = client_->Get("/newsapp/api/getFeaturedNews");
  ASSERT_TRUE(html);
  EXPECT_EQ(html->status, 200);
  EXPECT_EQ(html->get_header_value("Content-Type"), "text/html");
  EXPECT_TRUE(platform::jsonDecode(html->body).isNil());
  EXPECT_FALSE(call("getAllCategory")["status"].boolValue());  // its own fault wins

  control(R"({"fault": "not_found", "method": "cms_App"})");
  auto missing = client_->Get("/newsapp/api/cms_App?id=1");
  ASSERT_TRUE(missing);
  EXPECT_EQ(missing->status, 404);

  control(R"({"clear": true})");
  control(R"({"fault": "drop", "method": "showNews"})");
  auto dropped = client_->Get("/newsapp/api/showNews?category_id=");
  EXPECT_FALSE(dropped);
  EXPECT_EQ(server_->store()->recordedRequests().back().status, 0);
  EXPECT_TRUE(call("getAllCategory")["status"].boolValue());

  control(R"({"fault": "none", "delay_ms": 150, "method": "getAllCategory"})");
  const auto start = std::chrono::steady_clock::now();
  EXPECT_TRUE(call("getAllCategory")["status"].boolValue());
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(150));

  auto bad = client_->Post("/_control", R"({"fault": "explode"})", "application/json");
  ASSERT_TRUE(bad);
  EXPECT_EQ(bad->status, 400);
}

TEST_F(NewsServerTest, ImagesAreRealPngAndJpegFiles) {
  auto png = client_->Get("/newsapp/images/category/3.png");
  ASSERT_TRUE(png);
  EXPECT_EQ(png->status, 200);
  EXPECT_EQ(png->get_header_value("Content-Type"), "image/png");
  ASSERT_GT(png->body.size(), 33u);
  EXPECT_EQ(png->body.substr(0, 8), std::string("\x89PNG\r\n\x1a\n", 8));
  EXPECT_EQ(png->body.substr(12, 4), "IHDR");
  EXPECT_EQ(png->body.substr(16, 8), std::string("\0\0\0\x30\0\0\0\x30", 8));  // 48 x 48

  auto jpeg = client_->Get("/newsapp/images/story/3-hd.jpg");
  ASSERT_TRUE(jpeg);
  EXPECT_EQ(jpeg->get_header_value("Content-Type"), "image/jpeg");
  ASSERT_GT(jpeg->body.size(), 4u);
  EXPECT_EQ(jpeg->body.substr(0, 3), "\xFF\xD8\xFF");
  EXPECT_EQ(jpeg->body.substr(jpeg->body.size() - 2), "\xFF\xD9");
  EXPECT_EQ(client_->Get("/newsapp/images/story/3-hd.jpg")->body, jpeg->body);  // same URL, same bytes

  auto normal = client_->Get("/newsapp/images/story/3-normal.png");
  ASSERT_TRUE(normal);
  EXPECT_EQ(normal->get_header_value("Content-Type"), "image/png");
  EXPECT_EQ(client_->Get("/newsapp/images/story/3.png")->status, 404);

  auto page = client_->Get("/newsapp/story/3");
  ASSERT_TRUE(page);
  EXPECT_NE(page->body.find("<h1>"), std::string::npos);
}

}  // namespace
}  // namespace quillet::backend
