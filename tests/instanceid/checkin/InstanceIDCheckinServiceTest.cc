#include <gtest/gtest.h>

#include <future>
#include <nlohmann/json.hpp>

#include "instanceid/checkin/InstanceIDAuthService.h"
#include "instanceid/checkin/InstanceIDCheckinService.h"
#include "instanceid/store/InstanceIDTestEnvironment.h"
#include "platform/registry/ClassRegistry.h"

namespace quillet::instanceid {
namespace {

using Result = std::pair<std::shared_ptr<InstanceIDCheckinPreferences>, std::optional<platform::Error>>;

// A store over a temporary install, and a check-in transport that answers
// with the next canned body and remembers the requests.
struct CheckinFixture : ::testing::Test {
  testing::TestInstall install;
  std::shared_ptr<InstanceIDStore> store = InstanceIDStore::defaultStore(install.env, nullptr);
  std::vector<nlohmann::json> requests;
  std::vector<platform::HttpRequest> rawRequests;
  std::string answer;

  void SetUp() override {
    InstanceIDCheckinService::setCheckinTestBlock(
        [this](const platform::HttpRequest& request, InstanceIDCheckinService::CheckinTestResponder respond) {
          rawRequests.push_back(request);
          requests.push_back(nlohmann::json::parse(request.body));
          respond(200, answer, std::nullopt);
        });
  }
  void TearDown() override { InstanceIDCheckinService::setCheckinTestBlock(nullptr); }

  std::shared_ptr<InstanceIDCheckinService> makeService() {
    return std::make_shared<InstanceIDCheckinService>(std::weak_ptr<InstanceIDCheckinCache>(store), install.env);
  }

  static Result checkin(InstanceIDCheckinService& service) {
    std::promise<Result> done;
    service.checkinWithCompletion([&done](auto preferences, auto error) { done.set_value({preferences, error}); });
    return done.get_future().get();
  }

  int64_t now() const { return install.env->nowMillis(); }
};

TEST_F(CheckinFixture, RequestCarriesTheCredentialAndA19DigitIdSurvives) {
  platform::ClassRegistry::shared().registerOperation("MSGService", "MSGSDKCurrentLocale",
                                                      [](const auto&) { return platform::Value("de_CH"); });
  auto service = makeService();
  answer = R"({"android_id": 5764607523034234879, "security_token": 9223372036854775807,
               "time_msec": 1700000000000, "digest": "dg1", "version_info": "vi",
               "setting": [{"name": "a", "value": "1"}, {"name": "b"}, {"name": "a", "value": "2"}]})";
  Result first = checkin(*service);
  ASSERT_TRUE(first.first) << first.second->description();
  EXPECT_EQ(first.first->deviceID(), "5764607523034234879");
  EXPECT_EQ(first.first->secretToken(), "9223372036854775807");
  EXPECT_EQ(first.first->servicesData(), (platform::Value::Dictionary{{"a", platform::Value("2")}}));
  EXPECT_EQ(first.first->deviceDataVersion(), "");

  const nlohmann::json& body = requests[0];
  EXPECT_EQ(rawRequests[0].method, "POST");
  EXPECT_EQ(rawRequests[0].url, "https://127.0.0.1:1/checkin");
  EXPECT_EQ(rawRequests[0].headers.value("content-type"), "application/json");
  EXPECT_EQ(body["id"], 0);
  EXPECT_EQ(body["checkin"]["iosbuild"]["os_version"], "IOS_9.3");
  EXPECT_EQ(body["checkin"]["type"], 2);
  EXPECT_EQ(body["locale"], "de_CH");
  EXPECT_EQ(body["digest"], "");
  EXPECT_TRUE(body["logging_id"].is_number_unsigned());
  platform::ClassRegistry::shared().removeClass("MSGService");

  answer = R"({"android_id": 1, "security_token": 2})";
  ASSERT_TRUE(checkin(*service).first);
  EXPECT_EQ(requests[1]["id"].get<int64_t>(), 5764607523034234879);
  EXPECT_EQ(requests[1]["security_token"].get<int64_t>(), 9223372036854775807);
  EXPECT_EQ(requests[1]["digest"], "dg1");
  EXPECT_EQ(requests[1]["checkin"]["last_checkin_msec"], 1700000000000);

  // The saved credential is what a new service loads.
  EXPECT_EQ(makeService()->checkinPreferences()->deviceID(), "1");
  EXPECT_TRUE(makeService()->checkinPreferences()->servicesData().empty());
}

TEST_F(CheckinFixture, BadAnswersFailAndKeepTheStoredCredential) {
  auto service = makeService();
  answer = R"({"android_id": 7, "security_token": 8})";
  ASSERT_TRUE(checkin(*service).first);

  answer = "{garbage";
  Result garbage = checkin(*service);
  EXPECT_FALSE(garbage.first);
  ASSERT_TRUE(garbage.second);
  EXPECT_EQ(garbage.second->code, 3840);

  answer = R"({"security_token": 8})";
  Result noID = checkin(*service);
  EXPECT_FALSE(noID.first);
  EXPECT_EQ(noID.second->code, 0);
  EXPECT_EQ(noID.second->domain, "com.stikri.iid");
  EXPECT_EQ(service->checkinPreferences()->deviceID(), "7");
  EXPECT_EQ(store->cachedCheckinPreferences()->deviceID(), "7");
}

TEST_F(CheckinFixture, FutureServerTimeIsReplacedByClientTime) {
  auto lines = testing::IIDLogLines::install();
  auto service = makeService();
  answer = nlohmann::json{{"android_id", 7}, {"security_token", 8}, {"time_msec", now() + 3600000}}.dump();
  Result result = checkin(*service);
  ASSERT_TRUE(result.first);
  EXPECT_EQ(result.first->lastCheckinTimestampMillis(), now());
  EXPECT_TRUE(lines->contains("Invalid last checkin timestamp in future."));
}

TEST_F(CheckinFixture, FailedPlistWriteTakesTheKeychainItemBack) {
  auto service = makeService();
  const auto plistPath = store->checkinStore().plist().plistPath();
  std::filesystem::create_directories(plistPath / "blocked");
  answer = R"({"android_id": 7, "security_token": 8})";
  Result result = checkin(*service);
  EXPECT_FALSE(result.first);
  EXPECT_EQ(result.second->code, 6);
  EXPECT_EQ(install.keychainCount(), 0u);
  EXPECT_FALSE(service->checkinPreferences()->hasValidCheckinInfo(now()));
}

TEST_F(CheckinFixture, AuthServiceRunsOneCheckinAtATime) {
  std::vector<InstanceIDCheckinService::CheckinTestResponder> pending;
  InstanceIDCheckinService::setCheckinTestBlock(
      [&pending](const platform::HttpRequest&, InstanceIDCheckinService::CheckinTestResponder respond) {
        pending.push_back(std::move(respond));
      });
  InstanceIDAuthService auth(store, install.env);
  EXPECT_FALSE(auth.hasValidCheckinInfo());

  std::promise<Result> done;
  auth.fetchCheckinInfoWithHandler([&done](auto preferences, auto error) { done.set_value({preferences, error}); });
  EXPECT_TRUE(auth.isCheckinInProgress());
  std::optional<platform::Error> busy;
  auth.fetchCheckinInfoWithHandler([&busy](auto, auto error) { busy = error; });
  ASSERT_TRUE(busy);
  EXPECT_EQ(busy->code, 5);

  ASSERT_EQ(pending.size(), 1u);
  pending[0](200, R"({"android_id": 11, "security_token": 22, "time_msec": 1})", std::nullopt);
  ASSERT_TRUE(done.get_future().get().first);
  EXPECT_FALSE(auth.isCheckinInProgress());
  EXPECT_EQ(auth.checkinAuthToken(), "11:22");

  // A fresh credential: no request and no call.
  auth.checkinPreferences()->setLastCheckinTimestampMillis(now());
  bool called = false;
  auth.fetchCheckinInfoWithHandler([&called](auto, auto) { called = true; });
  EXPECT_FALSE(called);
  EXPECT_EQ(pending.size(), 1u);

  install.clock->advance(86400.0);
  EXPECT_FALSE(auth.hasValidCheckinInfo());
}

TEST_F(CheckinFixture, AuthTokensAreReadOnceAndSavedOnChange) {
  InstanceIDAuthService auth(store, install.env);
  EXPECT_FALSE(auth.cachedIIDAuthTokenForAuthorizedEntity("sender"));
  auth.saveIIDAuthToken("t1", "sender");
  EXPECT_EQ(store->tokenWithAuthorizedEntity("sender", "iid-all"), "t1");
  EXPECT_EQ(auth.cachedIIDAuthTokenForAuthorizedEntity("sender"), "t1");
  auth.saveIIDAuthToken("t2", "sender");
  EXPECT_EQ(store->tokenWithAuthorizedEntity("sender", "iid-all"), "t2");
  EXPECT_EQ(auth.cachedIIDAuthTokenForAuthorizedEntity("sender"), "t1");  // until the next start
}

}  // namespace
}  // namespace quillet::instanceid
