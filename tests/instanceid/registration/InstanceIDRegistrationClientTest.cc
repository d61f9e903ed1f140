// Token registration: the request text, the reply and token-text parsing,
// the phone-registration retry, deletes and the registrar's refusals.
#include <gtest/gtest.h>

#include "instanceid/keypair/InstanceIDKeyPairUtilities.h"
#include "instanceid/keypair/InstanceIDStringEncoding.h"
#include "instanceid/registration/InstanceIDCommandHandler.h"
#include "instanceid/registration/InstanceIDRegistrar.h"
#include "instanceid/registration/InstanceIDRegistrationContent.h"
#include "instanceid/registration/RegistrationTestSupport.h"
#include "instanceid/support/InstanceIDLogger.h"
#include "platform/registry/ClassRegistry.h"
#include "platform/value/Format.h"

namespace quillet::instanceid {
namespace {

using testing::RegistrationInstall;
using testing::TokenResult;

class RecordingCommands : public InstanceIDCommandHandler {
 public:
  void notifyTokenRefresh() override { ++refreshes; }
  void notifyIdentityLost() override { ++losses; }
  std::atomic<int> refreshes{0};
  std::atomic<int> losses{0};
};

class CapturingWriter : public InstanceIDLogWriter {
 public:
  void logMessage(const std::string& message, InstanceIDLogLevel) override {
    std::lock_guard lock(mutex);
    lines.push_back(message);
  }
  bool contains(const std::string& fragment) {
    std::lock_guard lock(mutex);
    for (const auto& line : lines) {
      if (line.find(fragment) != std::string::npos) return true;
    }
    return false;
  }
  std::mutex mutex;
  std::vector<std::string> lines;
};

class RegistrationTest : public ::testing::Test {
 protected:
  void SetUp() override {
    store = install.storeWithCheckin();
    authService = std::make_shared<InstanceIDAuthService>(store, install.env());
    registrar = std::make_shared<InstanceIDRegistrar>(authService, install.env());
  }

  // Fetches through the registrar and waits for the answer.
  void fetch(TokenResult& result, const std::string& scope = "MSG", platform::Value::Dictionary options = {}) {
    registrar->fetchTokenWithAuthorizedEntity("ent", scope, RegistrationInstall::sharedKeyPair(), options,
                                              result.handler());
    ASSERT_TRUE(install.runUntil([&] { return result.callCount() > 0; }));
  }

  RegistrationInstall install;
  std::shared_ptr<InstanceIDStore> store;
  std::shared_ptr<InstanceIDAuthService> authService;
  std::shared_ptr<InstanceIDRegistrar> registrar;
};

TEST_F(RegistrationTest, FetchRequestCarriesHeadersFieldsInOrderAVerifiableSignatureAndOnlyTheAPNSTokenOption) {
  install.reply("token=|ID|1|PING|:t");
  TokenResult result;
  fetch(result, "MSG",
        {{"apns_token", platform::Value("p_ab")},
         {"apns_sandbox", platform::Value(false)},
         {"other", platform::Value(1)}});
  ASSERT_EQ(install.requests().size(), 1u);
  const platform::HttpRequest request = install.requests()[0];
  EXPECT_EQ(request.method, "POST");
  EXPECT_EQ(request.url, "https://127.0.0.1:9/iid/register");
  EXPECT_EQ(request.headers.value("Authorization"), "DeviceLogin 4000000000000000001:5000");
  EXPECT_EQ(request.headers.value("app"), "app.test");
  EXPECT_EQ(request.headers.value("info"), "vinfo");

  const std::string body = RegistrationInstall::body(request);
  const uint64_t id = RegistrationInstall::requestID(request);
  const std::string head = platform::format(
      "sender=ent&app=app.test&device=4000000000000000001&app_ver=2.0&X-subtype=ent&X-scope=MSG&plat=2&X-kid=%lu&"
      "appid=",
      {platform::Value(id)});
  ASSERT_TRUE(body.starts_with(head)) << body;
  EXPECT_EQ(body.find("X-msg_ver"), std::string::npos);
  EXPECT_TRUE(body.ends_with("&apns_token=p_ab")) << body;
  EXPECT_EQ(body.find("other"), std::string::npos);
  EXPECT_EQ(body.find("apns_sandbox"), std::string::npos);

  // pub2 keeps its CR LF; sig undoes to "<bundle>\n<pub2>" with the public key.
  const size_t pub2At = body.find("&pub2=") + 6;
  const size_t sigAt = body.find("&sig=");
  const std::string pub2 = body.substr(pub2At, sigAt - pub2At);
  EXPECT_NE(pub2.find("\r\n"), std::string::npos);
  EXPECT_EQ(pub2, InstanceIDPlainBase64WithLineBreaks(RegistrationInstall::sharedKeyPair()->publicKeyData()));
  const size_t sigEnd = body.find("&apns_token=");
  const std::string sig = body.substr(sigAt + 5, sigEnd - sigAt - 5);
  auto encoding = InstanceIDStringEncoding::rfc4648Base64WebsafeStringEncoding();
  encoding.setDoPad(false);
  const auto signature = encoding.decode(sig);
  ASSERT_TRUE(signature);
  ASSERT_EQ(signature->size() % 256, 0u);
  const std::string signedText = "app.test\n" + pub2;
  const auto& publicKey = *RegistrationInstall::sharedKeyPair()->publicKey();
  std::string recovered;
  for (size_t offset = 0, slice = 0; offset < signature->size(); offset += 256, slice += 256) {
    const auto block = publicKey.rawPublicOperation(std::span(signature->data() + offset, 256));
    ASSERT_TRUE(block);
    const size_t length = std::min<size_t>(256, signedText.size() - slice);
    recovered.append(block->end() - length, block->end());
  }
  EXPECT_EQ(recovered, signedText);
}

TEST_F(RegistrationTest, MessagingVersionIsSentOnlyWhenTheMessagingClassTellsOne) {
  platform::ClassRegistry::shared().registerOperation(
      "MSGService", "MSGSDKVersion", [](const std::vector<platform::Value>&) { return platform::Value("3.1"); });
  const std::string withVersion = InstanceIDRegistrationContent::fetchRequestContent("e", "s", "d", *install.env(), 4);
  platform::ClassRegistry::shared().removeClass("MSGService");
  EXPECT_TRUE(withVersion.ends_with("&X-kid=4&X-msg_ver=3.1")) << withVersion;
  EXPECT_TRUE(
      InstanceIDRegistrationContent::fetchRequestContent("e", "s", "d", *install.env(), 4).ends_with("&X-kid=4"));
}

TEST_F(RegistrationTest, TokenBelongsOnlyToTheRequestItAnswersAndAuthTokenIsKept) {
  install.setSticky(false);
  // The reply is built from the request id, which is process-wide.
  InstanceIDRegistrationClient::setRegistrationTestBlock(
      [](const platform::HttpRequest& request, InstanceIDRegistrationClient::RegistrationTestCompletion done) {
        const uint64_t id = RegistrationInstall::requestID(request);
        const bool answerOther = RegistrationInstall::body(request).find("X-scope=other") != std::string::npos;
        done(200, {{"X-iid-auth", "auth-1"}}, platform::format("token=%lu:abc", {platform::Value(id + answerOther)}),
             std::nullopt);
      });
  TokenResult mine;
  fetch(mine);
  EXPECT_EQ(mine.token, "abc");
  EXPECT_FALSE(mine.error);
  EXPECT_EQ(store->tokenWithAuthorizedEntity("ent", "iid-all"), "auth-1");

  TokenResult other;
  fetch(other, "other");
  EXPECT_FALSE(other.token);
  EXPECT_FALSE(other.error);
}

TEST_F(RegistrationTest, StructuredTokensCarryCommandsToTheHandler) {
  auto commands = std::make_shared<RecordingCommands>();
  InstanceIDCommandHandler::setShared(commands);
  const std::pair<const char*, const char*> cases[] = {
      {"token=|ID|1|SYNC|:abc", "abc"}, {"token=|ID|1|RST|:abc", "abc"}, {"token=|ID|1|PING|:abc", "abc"}};
  for (const auto& [reply, token] : cases) {
    install.reply(reply);
    TokenResult result;
    fetch(result, std::string("s") + std::to_string(install.requests().size()));
    EXPECT_EQ(result.token, token);
  }
  EXPECT_EQ(commands->refreshes.load(), 1);
  EXPECT_EQ(commands->losses.load(), 1);

  install.reply("token=|ID|1");
  TokenResult shortForm;
  fetch(shortForm, "short");
  EXPECT_FALSE(shortForm.token);
  EXPECT_FALSE(shortForm.error);
  InstanceIDCommandHandler::setShared({});
}

TEST_F(RegistrationTest, PhoneRegistrationErrorIsRetriedAfterThirtySecondsThreeTimesInTheProcess) {
  install.reply("Error=X:PHONE_REGISTRATION_ERROR");
  install.setSticky(true);
  TokenResult result;
  registrar->fetchTokenWithAuthorizedEntity("ent", "MSG", RegistrationInstall::sharedKeyPair(), {}, result.handler());
  for (size_t sent = 1; sent <= 3; ++sent) {
    ASSERT_TRUE(install.runUntil([&] { return install.requests().size() == sent; }));
    // The answer is queued; once the session queue has read it, the retry waits on the main loop.
    registrar->registrationClientForAuthorizedEntity("ent", "MSG")->sessionQueue()->sync([] {});
    install.loop()->advance(29.0);
    EXPECT_EQ(install.requests().size(), sent);
    install.loop()->advance(1.0);
  }
  ASSERT_TRUE(install.runUntil([&] { return result.callCount() > 0; }));
  EXPECT_EQ(install.requests().size(), 4u);
  EXPECT_EQ(result.errorCode(), InstanceIDErrorCodeInvalidResponse);
  EXPECT_EQ(InstanceIDRegistrationClient::phoneRegistrationRetryCount(), 3);
}

TEST_F(RegistrationTest, UnusableRepliesGiveErrorSevenAndTransportErrorsPassThrough) {
  for (const char* reply : {"", "Error=OTHER", "junk", "token="}) {
    install.reply(reply);
    TokenResult result;
    fetch(result, std::string("s") + reply);
    EXPECT_EQ(result.errorCode(), InstanceIDErrorCodeInvalidResponse) << reply;
  }
  install.replyError(platform::Error("net", -1004));
  TokenResult failed;
  fetch(failed, "net");
  EXPECT_EQ(failed.errorCode(), -1004);
}

TEST(RegistrationContentTest, ReplyLinesSplitAtTheFirstEqualsAndBadLinesAreLoggedAndSkipped) {
  auto writer = std::make_shared<CapturingWriter>();
  InstanceIDLogger::shared().setWriter(writer);
  const auto parsed = InstanceIDRegistrationContent::parseFetchTokenResponse("junk\ntoken=1:a=b\nError=E\nError=F");
  InstanceIDLogger::shared().setWriter(std::make_shared<InstanceIDLogStandardWriter>());
  EXPECT_EQ(parsed.size(), 2u);
  EXPECT_EQ(parsed.at("token"), "1:a");
  EXPECT_EQ(parsed.at("Error"), "F");
  EXPECT_TRUE(writer->contains("Unexpected result junk"));

  EXPECT_EQ(InstanceIDRegistrationContent::tokenFromTokenText("|ID|1|SYNC|::x", 3).token, ":x");
  EXPECT_EQ(InstanceIDRegistrationContent::tokenFromTokenText("12:x", 1).token, std::nullopt);
  EXPECT_EQ(InstanceIDRegistrationContent::tokenFromTokenText("1:", 1).token, "");
}

TEST_F(RegistrationTest, DeletesSendTheDeleteBodyAndAcceptOnlyDeletedReplies) {
  install.reply("deleted=ent");
  install.reply("nope");
  TokenResult ok;
  registrar->deleteTokenWithAuthorizedEntity("ent", "MSG", RegistrationInstall::sharedKeyPair(), ok.deleteHandler());
  ASSERT_TRUE(install.runUntil([&] { return ok.callCount() > 0; }));
  EXPECT_FALSE(ok.error);
  const platform::HttpRequest request = install.requests()[0];
  EXPECT_FALSE(request.headers.contains("info"));
  const std::string expected =
      platform::format("device=4000000000000000001&app=app.test&app_ver=2.0&X-scope=MSG&X-kid=%lu&delete=true&appid=",
                       {platform::Value(RegistrationInstall::requestID(request))});
  EXPECT_TRUE(RegistrationInstall::body(request).starts_with(expected)) << RegistrationInstall::body(request);

  TokenResult refused;
  registrar->deleteTokenWithAuthorizedEntity("ent", "MSG", RegistrationInstall::sharedKeyPair(),
                                             refused.deleteHandler());
  ASSERT_TRUE(install.runUntil([&] { return refused.callCount() > 0; }));
  EXPECT_EQ(refused.errorCode(), InstanceIDErrorCodeInvalidResponse);
}

TEST_F(RegistrationTest, ResetDeleteUsesTheOldCredentialAndNoKeys) {
  install.reply("deleted=1");
  TokenResult result;
  InstanceIDRegistrationClient::deleteMSGTokenOnAppResetWithDeviceID("11", "22", install.env(), result.deleteHandler());
  ASSERT_TRUE(install.runUntil([&] { return result.callCount() > 0; }));
  EXPECT_FALSE(result.error);
  const platform::HttpRequest request = install.requests()[0];
  EXPECT_EQ(request.headers.value("Authorization"), "DeviceLogin 11:22");
  EXPECT_EQ(RegistrationInstall::body(request),
            platform::format("device=11&app=app.test&app_ver=2.0&X-scope=MSG&X-kid=%lu&delete=true",
                             {platform::Value(RegistrationInstall::requestID(request))}));

  TokenResult missing;
  InstanceIDRegistrationClient::deleteMSGTokenOnAppResetWithDeviceID("11", "", install.env(), missing.deleteHandler());
  EXPECT_EQ(missing.errorCode(), InstanceIDErrorCodeMissingCredential);
}

TEST_F(RegistrationTest, RegistrarRefusesWithoutCheckinAndWhileTheSameKeyIsRunning) {
  install.holdNext();
  TokenResult first;
  registrar->fetchTokenWithAuthorizedEntity("ent", "MSG", RegistrationInstall::sharedKeyPair(), {}, first.handler());
  TokenResult second;
  registrar->fetchTokenWithAuthorizedEntity("ent", "MSG", RegistrationInstall::sharedKeyPair(), {}, second.handler());
  EXPECT_EQ(second.errorCode(), InstanceIDErrorCodeInProgress);
  install.answerHeld("Error=E");
  ASSERT_TRUE(install.runUntil([&] { return first.callCount() > 0; }));
  EXPECT_EQ(first.errorCode(), InstanceIDErrorCodeInvalidResponse);

  // A day after the check-in the credential no longer counts.
  install.clock()->setWallSeconds(install.clock()->wallSeconds() + 86400.0);
  TokenResult refused;
  registrar->fetchTokenWithAuthorizedEntity("ent", "MSG", RegistrationInstall::sharedKeyPair(), {}, refused.handler());
  EXPECT_EQ(refused.errorCode(), InstanceIDErrorCodeNoValidCheckin);

  // A client without a credential answers 6.
  store->removeCheckinPreferences(nullptr);
  InstanceIDRegistrationClient bare(std::make_shared<InstanceIDAuthService>(store, install.env()), "e", "s",
                                    RegistrationInstall::sharedKeyPair(), install.env());
  TokenResult noCredential;
  bare.fetchTokenWithHandler(noCredential.handler());
  EXPECT_EQ(noCredential.errorCode(), InstanceIDErrorCodeMissingCredential);
}

}  // namespace
}  // namespace quillet::instanceid
