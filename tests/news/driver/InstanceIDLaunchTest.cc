// The shell's token request end to end against the stand-in check-in and
// registration servers, on virtual time: the first launch checks in, makes
// the key pair and registers; a launch within a day answers from the cache;
// a launch 25 hours later checks in again as the same device; a "SYNC"
// answer makes the shell ask again; a reinstall gives a new identity.
#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

#include "backend/authority/BackendCertificateAuthority.h"
#include "backend/checkin/CheckinServer.h"
#include "backend/registration/RegistrationServer.h"
#include "news/driver/PhoneSession.h"
#include "platform/keychain/Keychain.h"
#include "platform/runloop/RunLoop.h"
#include "platform/value/Format.h"
#include "platform/value/Json.h"
#include "support/LogCapture.h"
#include "support/TempDir.h"

namespace quillet::news {
namespace {

using platform::Value;

constexpr double kStart = 1'800'000'000.0;
constexpr const char* kSender = "482910375521";

class InstanceIDLaunchTest : public ::testing::Test {
 protected:
  void SetUp() override {
    backend::BackendCertificateAuthority authority(serverDir_.path() / "ca");
    ASSERT_TRUE(authority.ensure());
    caFile_ = authority.caFile().string();
    serverClock_ = std::make_shared<platform::ManualClock>(kStart);
    backend::CheckinServerOptions checkinOptions;
    checkinOptions.certificateFile = authority.certificateFile();
    checkinOptions.keyFile = authority.keyFile();
    checkinOptions.clock = serverClock_;
    checkin_ = std::make_unique<backend::CheckinServer>(checkinOptions);
    ASSERT_TRUE(checkin_->start());
    backend::RegistrationServerOptions registrationOptions;
    registrationOptions.certificateFile = authority.certificateFile();
    registrationOptions.keyFile = authority.keyFile();
    registrationOptions.devices = checkin_->devices();
    registrationOptions.clock = serverClock_;
    registration_ = std::make_unique<backend::RegistrationServer>(registrationOptions);
    ASSERT_TRUE(registration_->start());
  }
  void TearDown() override {
    registration_->stop();
    checkin_->stop();
  }

  // Launches the app at `wallSeconds`, hands it the device token and runs
  // until the shell has had its token request answered (or
  // 60 s of real time pass); `more` runs after that. Returns the stored token.
  std::string launch(double wallSeconds, const std::string& more = "") {
    serverClock_->setWallSeconds(wallSeconds);
    PhoneOptions options;
    options.dataDirectory = phoneDir_.path();
    options.network = "wifi";
    options.apiBase = "http://127.0.0.1:9/newsapp/api/";
    options.virtualClock = true;
    options.json = true;
    options.startWallSeconds = wallSeconds;
    options.checkinURL = checkin_->url();
    options.registrationURL = registration_->url();
    options.caFile = caFile_;
    options.msgSenderID = kSender;
    std::ostringstream out;
    std::string token;
    {
      PhoneSession session(options, out);
      session.execute("launch");
      session.execute("device-token <0a1b2c3d 4e5f6071>");
      log_.clear();
      session.runLoop().runUntil(
          [&] { return log_.contains("Registration Token:") || log_.contains("Registration to MSG failed"); }, 60);
      token = session.defaults().stringForKey("DeviceID").value_or("");
      std::istringstream lines(more);
      std::string line;
      while (std::getline(lines, line)) session.execute(line);
      session.execute("quit");
    }
    platform::RunLoop::setMain(nullptr);
    return token;
  }

  std::string logText() const {
    std::string text;
    for (const auto& line : log_.messages()) text += line + "\n";
    return text;
  }

  size_t requestsTo(const backend::CheckinServer& server) const { return server.requests().size(); }
  size_t fetches() const {
    size_t count = 0;
    for (const auto& request : registration_->requests()) {
      if (request.body.find("delete=true") == std::string::npos) ++count;
    }
    return count;
  }
  std::string appid(size_t fetch) const {
    size_t seen = 0;
    for (const auto& request : registration_->requests()) {
      if (request.body.find("delete=true") != std::string::npos) continue;
      if (seen++ != fetch) continue;
      const size_t at = request.body.find("&appid=");
      return request.body.substr(at + 7, 11);
    }
    return "";
  }
  size_t keyItems() {
    platform::FileSystem fileSystem(phoneDir_.path());
    platform::Keychain keychain(fileSystem);
    std::vector<platform::KeychainItem> items;
    platform::KeychainQuery query;
    query.itemClass = platform::KeychainItemClass::Key;
    keychain.copyMatching(query, platform::Keychain::MatchLimit::All, &items);
    return items.size();
  }

  ::quillet::testing::LogCapture log_;  // what the last launch logged
  ::quillet::testing::TempDir serverDir_;
  ::quillet::testing::TempDir phoneDir_;
  std::string caFile_;
  std::shared_ptr<platform::ManualClock> serverClock_;
  std::unique_ptr<backend::CheckinServer> checkin_;
  std::unique_ptr<backend::RegistrationServer> registration_;
};

TEST_F(InstanceIDLaunchTest, LaunchesCheckInRegisterUseTheCacheAndCheckInAgainADayLater) {
  const std::string first = launch(kStart);
  ASSERT_FALSE(first.empty()) << logText();
  EXPECT_EQ(requestsTo(*checkin_), 1u);
  EXPECT_EQ(fetches(), 1u);
  const auto devices = checkin_->devices()->devices();
  ASSERT_EQ(devices.size(), 1u);
  EXPECT_EQ(keyItems(), 2u);

  // Within a day: the token comes from the cache; nothing is asked.
  EXPECT_EQ(launch(kStart + 3600), first);
  EXPECT_EQ(requestsTo(*checkin_), 1u);
  EXPECT_EQ(fetches(), 1u);

  // 25 hours later: check-in again with the old id and secret, same device.
  EXPECT_EQ(launch(kStart + 25 * 3600), first);
  const auto checkins = checkin_->requests();
  ASSERT_EQ(checkins.size(), 2u);
  const Value body = platform::jsonDecode(checkins[1].body);
  EXPECT_EQ(platform::format("%@", body["id"]), devices[0].idText);
  EXPECT_EQ(platform::format("%@", body["security_token"]), devices[0].secret);
  EXPECT_EQ(checkin_->devices()->devices().size(), 1u);
  EXPECT_EQ(fetches(), 1u);
}

TEST_F(InstanceIDLaunchTest, ASyncAnswerMakesTheShellAskAgainAndAReinstallGivesANewIdentity) {
  registration_->addSwitch({backend::RegistrationSwitch::Kind::StructuredToken, "SYNC", 1});
  const std::string first = launch(kStart, "wait 3\nsettle");
  ASSERT_FALSE(first.empty()) << logText();
  // The refresh drops the cached tokens before the answer's own token is
  // kept, so the shell's second request is answered from the cache.
  EXPECT_TRUE(log_.contains("The MSG registration token needs to be changed."));
  size_t answers = 0;
  for (const auto& line : log_.messages()) answers += line.starts_with("Registration Token: ");
  EXPECT_EQ(answers, 2u);
  EXPECT_EQ(fetches(), 1u);
  const std::string identity = appid(0);

  // Reinstall: Documents and defaults go, the keychain stays.
  platform::FileSystem(phoneDir_.path()).removeInstallData();
  const std::string again = launch(kStart + 60);
  ASSERT_FALSE(again.empty());
  const std::string newIdentity = appid(fetches() - 1);
  EXPECT_NE(newIdentity, identity);
  EXPECT_EQ(keyItems(), 2u);  // the old pair's items are gone, the new pair's stand
}

}  // namespace
}  // namespace quillet::news
