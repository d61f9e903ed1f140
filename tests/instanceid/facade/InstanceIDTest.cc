// The facade: argument checks, the option conversion, the check-in wait,
// and the server's commands.
#include <gtest/gtest.h>

#include "instanceid/checkin/InstanceIDCheckinService.h"
#include "instanceid/facade/InstanceID.h"
#include "instanceid/keypair/InstanceIDKeyPairStore.h"
#include "instanceid/registration/RegistrationTestSupport.h"
#include "instanceid/tokens/InstanceIDTokenManager.h"
#include "platform/notifications/NotificationCenter.h"
#include "platform/value/Format.h"

namespace quillet::instanceid {
namespace {

using platform::Value;
using testing::RegistrationInstall;
using testing::TokenResult;

class CountingDelegate : public InstanceIDDelegate {
 public:
  void onTokenRefresh() override { ++refreshes; }
  int refreshes = 0;
};

const Value kOptions =
    Value::dictionary({{"apns_token", Value::bytes(Value::Bytes{0xAB, 0x01})}, {"apns_sandbox", Value(true)}});

class InstanceIDTest : public ::testing::Test {
 protected:
  // An install that already holds a key pair, made once and copied in.
  static void SetUpTestSuite() {
    keyedRoot = new quillet::testing::TempDir();
    RegistrationInstall maker;
    platform::Error error;
    InstanceIDKeyPairStore(maker.env()).loadKeyPairWithError(&error);
    std::filesystem::copy(maker.root(), keyedRoot->path(), std::filesystem::copy_options::recursive);
  }
  static void TearDownTestSuite() {
    delete keyedRoot;
    keyedRoot = nullptr;
  }

  std::shared_ptr<InstanceID> started(bool allowWithoutAPNS = false) {
    auto instanceID = std::make_shared<InstanceID>(install.env());
    InstanceIDConfig config = InstanceIDConfig::defaultConfig();
    config.allowMSGRegistrationWithoutAPNSToken = allowWithoutAPNS;
    config.delegate = delegate;
    instanceID->startWithConfig(config);
    return instanceID;
  }

  static inline quillet::testing::TempDir* keyedRoot = nullptr;
  RegistrationInstall install{keyedRoot->path()};
  std::shared_ptr<CountingDelegate> delegate = std::make_shared<CountingDelegate>();
};

TEST_F(InstanceIDTest, ArgumentChecksAnswerOnTheMainQueueInTheirOrder) {
  auto code = [this](InstanceID& instanceID, const std::string& entity, const std::string& scope,
                     const Value& options) {
    TokenResult result;
    instanceID.tokenWithAuthorizedEntity(entity, scope, options, result.handler());
    EXPECT_EQ(result.callCount(), 0);
    install.loop()->runPending();
    return result.errorCode();
  };
  InstanceID unstarted(install.env());
  EXPECT_EQ(code(unstarted, "e", "MSG", Value()), InstanceIDErrorCodeMissingAPNSToken);
  EXPECT_EQ(code(unstarted, "e", "other", Value()), InstanceIDErrorCodeMissingKeyPairStore);

  auto instanceID = started();
  EXPECT_EQ(code(*instanceID, "e", "msg", Value::dictionary({{"apns_token", Value::bytes("x")}})),
            InstanceIDErrorCodeMissingAPNSServerType);
  EXPECT_EQ(
      code(*instanceID, "e", "MSG", Value::dictionary({{"apns_token", Value("text")}, {"apns_sandbox", Value(false)}})),
      InstanceIDErrorCodeUnknown);
  EXPECT_EQ(code(*instanceID, "", "MSG", kOptions), InstanceIDErrorCodeInvalidEntity);
  EXPECT_EQ(code(*instanceID, "e", "", Value()), InstanceIDErrorCodeInvalidScope);

  TokenResult deleteResult;
  instanceID->deleteTokenWithAuthorizedEntity("", "s", deleteResult.deleteHandler());
  install.loop()->runPending();
  EXPECT_EQ(deleteResult.errorCode(), InstanceIDErrorCodeInvalidEntity);
}

TEST_F(InstanceIDTest, OptionsAreConvertedToTokenTextAndCheckedOnlyAsAWarning) {
  EXPECT_EQ(InstanceID::replaceAPNSDataWithString(kOptions)["apns_token"], Value("s_ab01"));
  const Value production =
      Value::dictionary({{"apns_token", Value::bytes(Value::Bytes{0x0f})}, {"apns_sandbox", Value(false)}});
  EXPECT_EQ(InstanceID::replaceAPNSDataWithString(production)["apns_token"], Value("p_0f"));
  const InstanceIDConfig config = InstanceIDConfig::defaultConfig();
  EXPECT_TRUE(InstanceID::verifyNewTokenOptions(Value(), config));
  EXPECT_TRUE(InstanceID::verifyNewTokenOptions(InstanceID::replaceAPNSDataWithString(kOptions), config));
  EXPECT_FALSE(InstanceID::verifyNewTokenOptions(kOptions, config));  // bytes are no text
  EXPECT_FALSE(InstanceID::verifyNewTokenOptions(Value::dictionary({{"other", Value(1)}}), config));
}

TEST_F(InstanceIDTest, TokenIsFetchedOnceThenServedFromTheCacheOnTheMainQueue) {
  install.storeWithCheckin();
  auto instanceID = started();
  install.reply("token=|ID|1|PING|:tok");
  for (int round = 0; round < 2; ++round) {
    TokenResult result;
    instanceID->tokenWithAuthorizedEntity("ent", "MSG", kOptions, [&](auto& token, auto& error) {
      EXPECT_TRUE(platform::RunLoop::main().isCurrent());
      result.handler()(token, error);
    });
    ASSERT_TRUE(install.runUntil([&] { return result.callCount() > 0; }));
    EXPECT_EQ(result.token, "tok");
  }
  ASSERT_EQ(install.requests().size(), 1u);
  EXPECT_TRUE(RegistrationInstall::body(install.requests()[0]).ends_with("&apns_token=s_ab01"));

  // Allowed without an APNs token, a messaging scope goes ahead with none.
  auto relaxed = started(true);
  TokenResult relaxedResult;
  relaxed->tokenWithAuthorizedEntity("ent", "MSG", Value(), relaxedResult.handler());
  ASSERT_TRUE(install.runUntil([&] { return relaxedResult.callCount() > 0; }));
  EXPECT_NE(relaxedResult.errorCode(), InstanceIDErrorCodeMissingAPNSToken);
}

TEST_F(InstanceIDTest, SecondRequestDuringAFirstCheckinWaitsThirtySeconds) {
  std::mutex mutex;
  std::vector<InstanceIDCheckinService::CheckinTestResponder> pending;
  InstanceIDCheckinService::setCheckinTestBlock(
      [&](const platform::HttpRequest&, InstanceIDCheckinService::CheckinTestResponder respond) {
        std::lock_guard lock(mutex);
        pending.push_back(std::move(respond));
      });
  auto instanceID = started();
  install.reply("token=|ID|1|PING|:tok");
  TokenResult first;
  TokenResult second;
  instanceID->tokenWithAuthorizedEntity("ent", "other", Value(), first.handler());
  instanceID->tokenWithAuthorizedEntity("ent", "other", Value(), second.handler());
  ASSERT_TRUE(install.runUntil([&] {
    std::lock_guard lock(mutex);
    return pending.size() == 1;
  }));
  const std::string reply = platform::format(
      "{\"android_id\": 4000000000000000001, \"security_token\": 5000, \"time_msec\": %lld, \"version_info\": \"v\"}",
      {Value(install.env()->nowMillis())});
  pending[0](200, reply, std::nullopt);
  ASSERT_TRUE(install.runUntil([&] { return first.callCount() > 0; }));
  EXPECT_EQ(first.token, "tok");
  install.loop()->advance(29.0);
  EXPECT_EQ(second.callCount(), 0);
  install.loop()->advance(1.0);
  ASSERT_TRUE(install.runUntil([&] { return second.callCount() > 0; }));
  EXPECT_EQ(second.token, "tok");
  EXPECT_EQ(install.requests().size(), 1u);
  InstanceIDCheckinService::setCheckinTestBlock(nullptr);
}

TEST_F(InstanceIDTest, ServerCommandsResetOrRefreshAndCallTheDelegateOnce) {
  install.storeWithCheckin();
  auto instanceID = started();
  auto post = [](Value message) {
    platform::NotificationCenter::defaultCenter().post(InstanceID::kMSGNotificationName, nullptr, std::move(message));
  };
  std::optional<std::string> before;
  instanceID->getIDWithHandler([&](auto& identity, auto&) { before = identity.value_or("none"); });
  ASSERT_TRUE(install.runUntil([&] { return before.has_value(); }));

  post(Value::dictionary({{"CMD", Value("PING")}}));
  post(Value("not a dictionary"));
  install.loop()->advance(5.0);
  EXPECT_EQ(delegate->refreshes, 0);
  EXPECT_TRUE(instanceID->keyPairStore()->hasCachedKeyPairs());

  post(Value::dictionary({{"CMD", Value("RST")}, {"subtype", Value("")}}));
  install.loop()->runPending();
  EXPECT_EQ(delegate->refreshes, 1);
  EXPECT_FALSE(instanceID->keyPairStore()->hasCachedKeyPairs());

  // Nothing left to reset: no callback.
  post(Value::dictionary({{"CMD", Value("RST_FULL")}}));
  install.loop()->advance(5.0);
  EXPECT_EQ(delegate->refreshes, 1);

  std::optional<std::string> after;
  instanceID->getIDWithHandler([&](auto& identity, auto&) { after = identity.value_or("none"); });
  ASSERT_TRUE(install.runUntil([&] { return after.has_value(); }));
  EXPECT_NE(*after, "none");
  EXPECT_NE(*after, *before);
}

TEST_F(InstanceIDTest, SyncInsideATokenDropsTheCacheAndRefreshesAfterTwoSeconds) {
  install.storeWithCheckin();
  auto instanceID = started();
  install.reply("token=|ID|1|PING|:old");
  install.reply("token=|ID|1|SYNC|:new");
  TokenResult first;
  instanceID->tokenWithAuthorizedEntity("ent", "other", Value(), first.handler());
  ASSERT_TRUE(install.runUntil([&] { return first.callCount() > 0; }));
  TokenResult second;
  instanceID->tokenWithAuthorizedEntity("ent", "third", Value(), second.handler());
  ASSERT_TRUE(install.runUntil([&] { return second.callCount() > 0; }));
  EXPECT_EQ(second.token, "new");
  // The older token went with the refresh; the new one was kept after it.
  EXPECT_FALSE(instanceID->tokenManager()->instanceIDStore()->tokenWithAuthorizedEntity("ent", "other"));
  EXPECT_EQ(instanceID->tokenManager()->instanceIDStore()->tokenWithAuthorizedEntity("ent", "third"), "new");
  install.loop()->advance(1.9);
  EXPECT_EQ(delegate->refreshes, 0);
  install.loop()->advance(0.2);
  EXPECT_EQ(delegate->refreshes, 1);
}

TEST_F(InstanceIDTest, DeletingTheIdentityDropsTokensOnBothSidesThenTheKeys) {
  install.storeWithCheckin();
  auto instanceID = started();
  install.reply("token=|ID|1|PING|:tok");
  install.reply("deleted=*");
  TokenResult token;
  instanceID->tokenWithAuthorizedEntity("ent", "other", Value(), token.handler());
  ASSERT_TRUE(install.runUntil([&] { return token.callCount() > 0; }));
  TokenResult deleted;
  instanceID->deleteIDWithHandler(deleted.deleteHandler());
  ASSERT_TRUE(install.runUntil([&] { return deleted.callCount() > 0; }));
  EXPECT_FALSE(deleted.error);
  EXPECT_NE(RegistrationInstall::body(install.requests().back()).find("&X-scope=*&"), std::string::npos);
  EXPECT_FALSE(instanceID->keyPairStore()->hasCachedKeyPairs());
  EXPECT_FALSE(instanceID->tokenManager()->instanceIDStore()->tokenWithAuthorizedEntity("ent", "other"));
}

}  // namespace
}  // namespace quillet::instanceid
