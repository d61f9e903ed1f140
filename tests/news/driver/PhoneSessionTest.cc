// The phone driver's command loop, in process, on virtual time.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "PhoneScript.h"
#include "backend/news/NewsServer.h"
#include "http/serialization/NKAppInfo.h"
#include "platform/device/AppBundle.h"
#include "platform/device/DeviceInfo.h"
#include "platform/text/DeviceLocale.h"
#include "support/LogCapture.h"
#include "support/TempDir.h"

namespace quillet::news {
namespace {

using platform::Value;

class PhoneSessionTest : public ::testing::Test {
 protected:
  // Runs `script` in a new session over the test's data root; the events printed.
  std::vector<Value> play(const std::string& script, bool log = false, const std::string& network = "none",
                          const std::string& apiBase = "") {
    PhoneOptions options;
    options.dataDirectory = dir_.path();
    options.log = log;
    options.network = network;
    if (!apiBase.empty()) options.apiBase = apiBase;
    testing::PhoneRun run = testing::playScript(options, script);
    EXPECT_EQ(run.status, 0);
    return run.events;
  }

  static std::vector<std::string> names(const std::vector<Value>& events) {
    return testing::PhoneRun{events, 0}.names();
  }

  ::quillet::testing::LogCapture log_;
  ::quillet::testing::TempDir dir_;
};

TEST_F(PhoneSessionTest, FirstLaunchWaitsOnTheSplashThenShowsOnboarding) {
  auto events = play("launch\nwait 4\nscreen\nquit\nscreen\n");
  EXPECT_EQ(names(events), (std::vector<std::string>{"notificationSettingsRegistered", "remoteNotificationsRegistered",
                                                     "screenReplaced", "badgeChanged", "alertShown", "screenPushed",
                                                     "screen", "quit"}));
  EXPECT_EQ(events[1]["number"], Value(1));
  EXPECT_EQ(events[2]["screen"], Value("SplashVC"));
  EXPECT_EQ(events[4]["info"]["message"], Value("No Internet Connection Found"));  // onboarding asks for categories
  EXPECT_EQ(events[5]["screen"], Value("CategoryVC"));
  EXPECT_TRUE(events[5]["animated"].isNil());  // present only when true
  const Value& snapshot = events[6]["snapshot"];
  EXPECT_EQ(snapshot["screen"], Value("CategoryVC"));
  EXPECT_EQ(snapshot["stack"], Value::array({"SplashVC", "CategoryVC"}));

  // The next launch goes straight to the feed.
  events = play("launch\nscreen\ndefaults\n");
  EXPECT_EQ(events.back()["values"]["LaunchAmounts"], Value(2));
  EXPECT_EQ(events[events.size() - 2]["snapshot"]["screen"], Value("HomeVC"));
}

TEST_F(PhoneSessionTest, InactiveAndTerminateMoveTheAppAsThePhoneDoes) {
  auto events = play("launch\ninactive\nscreen\nbackground\ninactive\nscreen\nterminate\nscreen\n");
  std::vector<std::string> states;
  for (const Value& event : events) {
    if (event["event"] == Value("screen")) states.push_back(event["snapshot"]["state"].string());
  }
  EXPECT_EQ(states, (std::vector<std::string>{"inactive", "inactive"}));
  EXPECT_EQ(names(events).back(), "applicationTerminated");  // and nothing after it
}

TEST_F(PhoneSessionTest, TheAppAndDeviceFactsComeFromTheOptions) {
  PhoneOptions options;
  options.dataDirectory = dir_.path();
  options.network = "none";
  options.appVersion = "2.1";
  options.osVersion = "10.3";
  options.languages = {"de-DE", "en"};
  options.timeZone = "Asia/Kolkata";
  options.appArguments = {"-MTRDebugEnabled"};
  std::ostringstream out;
  PhoneSession session(options, out);
  EXPECT_EQ(platform::AppBundle::main().shortVersionString, "2.1");
  EXPECT_EQ(platform::DeviceInfo::current().systemVersion, "10.3");
  EXPECT_EQ(platform::DeviceInfo::current().arguments, std::vector<std::string>{"-MTRDebugEnabled"});
  EXPECT_EQ(platform::DeviceLocale::preferredLanguages(), (std::vector<std::string>{"de-DE", "en"}));
  EXPECT_EQ(platform::DeviceInfo::timeZoneOffsetMinutes(1'800'000'000.0), 330);
  EXPECT_NE(http::NKAppInfo::current().shortVersionString.find("2.1"), std::string::npos);
}

TEST_F(PhoneSessionTest, BadCommandsAreReportedAndTheSessionGoesOn) {
  auto events = play(
      "fly away\nwait soon\npush [1]\ndevice-token 0g\nscreenshot\nshare 1\nlaunch\nlaunch\n"
      "alert-tap OK\ntype\nbegin-edit txtNowhere\nshare one\npage-event onReady\nmail-finish sent\n"
      "mail-finish maybe\nclose-sheet\ndevice watch\nmail-account maybe\n"
      "push {\"post_id\": 12}\ndevice-token <0a1b2c3d 4e>\ndefaults\n",
      true);
  int errors = 0;
  for (const Value& event : events) errors += event["event"] == Value("error");
  EXPECT_EQ(errors, 17);
  const Value& values = events.back()["values"];
  EXPECT_EQ(values["NewsID"], Value("12"));
  EXPECT_EQ(values["DeviceToken"], Value("0a1b2c3d4e"));
  EXPECT_EQ(values["badgeCount"], Value(1));
  bool logged = false;
  for (const Value& event : events) {
    logged |= event["event"] == Value("log") &&
              event["message"] == Value("Device ..............................token: 0a1b2c3d4e");
  }
  EXPECT_TRUE(logged);
}

TEST_F(PhoneSessionTest, RequestsGoThroughTheApiClientOrMeetTheNoNetworkAlert) {
  ::quillet::testing::TempDir serverDir;
  backend::NewsServerOptions serverOptions;
  serverOptions.port = 0;
  serverOptions.dataDirectory = serverDir.path();
  backend::NewsServer server(serverOptions);
  ASSERT_TRUE(server.start());

  auto all = play(
      "launch\nrequest getAllCategory\nsettle\nrequest showNews {\"id\": \"999999\"}\nsettle\n"
      "network none\nrequest getFeaturedNews\nsettle\nrequest\n",
      false, "wifi", server.apiUrl());
  std::vector<Value> events;
  for (const Value& event : all) {
    const std::string name = event["event"].string();
    if (name.starts_with("request") || name == "alertShown" || name == "network" || name == "error") {
      events.push_back(event);
    }
  }
  EXPECT_EQ(names(events),
            (std::vector<std::string>{"requestSucceeded", "requestFailed", "network", "alertShown", "error"}));
  EXPECT_EQ(events[0]["method"], Value("getAllCategory"));
  EXPECT_GE(events[0]["reply"]["result"].count(), 8u);
  EXPECT_EQ(events[1]["reply"]["status"].boolValue(), false);
  EXPECT_EQ(events[3]["info"]["message"], Value("No Internet Connection Found"));
  server.stop();
}

}  // namespace
}  // namespace quillet::news
