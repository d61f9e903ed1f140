#include <gtest/gtest.h>
#include <httplib.h>
#include <nlohmann/json.hpp>

#include "backend/authority/BackendCertificateAuthority.h"
#include "backend/checkin/CheckinServer.h"
#include "support/LogCapture.h"
#include "support/TempDir.h"

namespace quillet::backend {
namespace {

using nlohmann::json;

// The body the client sends.
json checkinBody(int64_t id = 0, int64_t token = 0) {
  return {{"checkin",
           {{"iosbuild", {{"model", "QPhone1,1"}, {"os_version", "IOS_12.4"}}},
            {"type", 2},
            {"user_number", 0},
            {"last_checkin_msec", 0}}},
          {"fragment", 0},
          {"logging_id", 3141592653u},
          {"locale", "en"},
          {"version", 2},
          {"digest", ""},
          {"timezone", "Europe/Berlin"},
          {"user_serial_number", 0},
          {"id", id},
          {"security_token", token}};
}

class CheckinServerTest : public ::testing::Test {
 protected:
  CheckinServerTest() : authority(dir.path() / "ca") {
    EXPECT_TRUE(authority.ensure());
    CheckinServerOptions options;
    options.certificateFile = authority.certificateFile();
    options.keyFile = authority.keyFile();
    options.clock = clock;
    options.settings = {{"relay_port", "5228"}};
    server = std::make_unique<CheckinServer>(options);
    EXPECT_TRUE(server->start());
    client = std::make_unique<httplib::SSLClient>("127.0.0.1", server->port());
    client->set_ca_cert_path(authority.caFile().c_str());
    client->enable_server_certificate_verification(true);
  }

  httplib::Result post(const json& body) { return client->Post("/checkin", body.dump(), "application/json"); }
  json checkIn(const json& body) {
    auto result = post(body);
    EXPECT_TRUE(result);
    if (!result) return {};
    EXPECT_EQ(result->status, 200) << result->body;
    return json::parse(result->body, nullptr, false);
  }

  testing::LogCapture log;
  testing::TempDir dir;
  BackendCertificateAuthority authority;
  std::shared_ptr<platform::ManualClock> clock = std::make_shared<platform::ManualClock>();
  std::unique_ptr<CheckinServer> server;
  std::unique_ptr<httplib::SSLClient> client;
};

TEST_F(CheckinServerTest, IssuesKeepsAndReplacesDevices) {
  // (The phone's own client against this server is played by the shell's launch test.)
  const json first = checkIn(checkinBody());
  ASSERT_TRUE(first["android_id"].is_number_unsigned());
  EXPECT_GT(first["android_id"].get<uint64_t>(), 0u);
  EXPECT_EQ(first["time_msec"], clock->wallMilliseconds());
  EXPECT_EQ(first["setting"], json::parse(R"([{"name": "relay_port", "value": "5228"}])"));
  EXPECT_EQ(first["digest"].get<std::string>().size(), 40u);
  const auto id = first["android_id"].get<int64_t>();
  const auto secret = first["security_token"].get<int64_t>();

  clock->advance(86400);
  const json again = checkIn(checkinBody(id, secret));
  EXPECT_EQ(again["android_id"], first["android_id"]);
  EXPECT_EQ(again["security_token"], first["security_token"]);
  EXPECT_EQ(again["digest"], first["digest"]);
  EXPECT_EQ(server->devices()->device(std::to_string(id))->lastCheckinMillis, clock->wallMilliseconds());

  const json other = checkIn(checkinBody(id, secret + 1));
  EXPECT_NE(other["android_id"], first["android_id"]);
  EXPECT_EQ(server->devices()->devices().size(), 2u);
  const auto records = server->requests();
  ASSERT_EQ(records.size(), 3u);
  EXPECT_EQ(records[1].result, "kept device " + std::to_string(id));
  EXPECT_EQ(records[1].body, checkinBody(id, secret).dump());
}

TEST_F(CheckinServerTest, NineteenDigitIdsSurviveTheTrip) {
  const uint64_t big = 9'123'456'789'012'345'678u;
  server->setNextDeviceId(big);
  const json first = checkIn(checkinBody());
  EXPECT_EQ(first.dump().find("\"android_id\":9123456789012345678") != std::string::npos, true) << first.dump();
  const json kept = checkIn(checkinBody(static_cast<int64_t>(big), first["security_token"].get<int64_t>()));
  EXPECT_EQ(kept["android_id"].get<uint64_t>(), big);

  server->setFixedDeviceId(1'000'000'000'000'000'001u);
  EXPECT_EQ(checkIn(checkinBody())["android_id"].get<uint64_t>(), 1'000'000'000'000'000'001u);
  EXPECT_EQ(checkIn(checkinBody(static_cast<int64_t>(big), 5))["android_id"].get<uint64_t>(),
            1'000'000'000'000'000'001u);
}

TEST_F(CheckinServerTest, RefusesWhatTheClientDoesNotSend) {
  std::vector<std::pair<std::string, json>> bad;
  auto with = [&](const std::string& what, auto change) {
    json body = checkinBody();
    change(body);
    bad.emplace_back(what, body);
  };
  with("extra key", [](json& b) { b["extra"] = 1; });
  with("missing key", [](json& b) { b.erase("timezone"); });
  with("version 3", [](json& b) { b["version"] = 3; });
  with("type as text", [](json& b) { b["checkin"]["type"] = "2"; });
  with("os_version", [](json& b) { b["checkin"]["iosbuild"]["os_version"] = "12.4"; });
  with("logging_id over 32 bits", [](json& b) { b["logging_id"] = 1ull << 32; });
  with("id without token", [](json& b) { b["id"] = 5; });
  with("negative id", [](json& b) {
    b["id"] = -5;
    b["security_token"] = 1;
  });
  with("id beyond 63 bits", [](json& b) {
    b["id"] = 1ull << 63;
    b["security_token"] = 1;
  });
  with("id as float", [](json& b) {
    b["id"] = 5.0;
    b["security_token"] = 1;
  });
  for (const auto& [what, body] : bad) {
    auto result = post(body);
    ASSERT_TRUE(result) << what;
    EXPECT_EQ(result->status, 400) << what;
    EXPECT_FALSE(result->body.empty()) << what;
  }
  auto notJson = client->Post("/checkin", "id=0", "application/json");
  EXPECT_EQ(notJson->status, 400);
  auto wrongType = client->Post("/checkin", checkinBody().dump(), "text/plain");
  EXPECT_EQ(wrongType->status, 400);
  EXPECT_EQ(wrongType->body, "content-type must be \"application/json\", not \"text/plain\"\n");
  EXPECT_TRUE(server->devices()->devices().empty());
  EXPECT_EQ(server->requests().back().status, 400);
}

TEST_F(CheckinServerTest, FaultsAndAdminInterface) {
  server->setFault(CheckinFault::GarbageBody);
  EXPECT_TRUE(json::parse(post(checkinBody())->body, nullptr, false).is_discarded());
  server->setFault(CheckinFault::GarbageBody, false);

  server->setFault(CheckinFault::MissingDeviceId);
  server->setFault(CheckinFault::FutureTime);
  server->setFault(CheckinFault::ServerError);
  auto result = post(checkinBody());
  EXPECT_EQ(result->status, 500);
  const json answer = json::parse(result->body);
  EXPECT_FALSE(answer.contains("android_id"));
  EXPECT_EQ(answer["time_msec"], clock->wallMilliseconds() + 3600 * 1000);
  server->clearFaults();

  server->setFault(CheckinFault::Drop);
  EXPECT_FALSE(post(checkinBody()));
  EXPECT_EQ(server->requests().back().status, 0);

  auto control = client->Post("/_admin/faults", R"({"clear": true})", "application/json");
  EXPECT_EQ(control->status, 200);
  EXPECT_EQ(client->Post("/_admin/faults", R"({"fault": "nonsense"})", "application/json")->status, 400);
  EXPECT_EQ(client->Post("/_admin/faults", R"({"device_id": 42})", "application/json")->status, 200);
  EXPECT_EQ(checkIn(checkinBody())["android_id"], 42);
  const json records = json::parse(client->Get("/_admin/requests")->body);
  ASSERT_EQ(records.size(), 4u);
  EXPECT_EQ(records[3]["result"], "issued fixed device 42");
  EXPECT_EQ(records[3]["headers"]["Content-Type"], "application/json");
}

}  // namespace
}  // namespace quillet::backend
