#include <gtest/gtest.h>
#include <httplib.h>
#include <nlohmann/json.hpp>

#include <algorithm>

#include "backend/authority/BackendCertificateAuthority.h"
#include "backend/registration/RegistrationServer.h"
#include "platform/crypto/Base64.h"
#include "platform/crypto/Digest.h"
#include "platform/crypto/RsaKeyPair.h"
#include "support/LogCapture.h"
#include "support/TempDir.h"

namespace quillet::backend {
namespace {

constexpr const char* kApp = "com.quillet.reader";

// One key for the whole program: generation is slow under the sanitizers.
const platform::RsaKeyPair& instanceKey() {
  static const platform::RsaKeyPair key = *platform::RsaKeyPair::generate();
  return key;
}

std::string websafe(std::span<const uint8_t> bytes) {
  std::string text = platform::Base64::encode(bytes);
  std::erase(text, '=');
  std::replace(text.begin(), text.end(), '+', '-');
  std::replace(text.begin(), text.end(), '/', '_');
  return text;
}

// The key part as the client builds it: "&appid=..&pub2=..&sig=..".
std::string keyPart(const std::string& app = kApp) {
  const auto der = instanceKey().publicKeyDer();
  auto digest = platform::Digest::sha1(der);
  digest[0] = static_cast<uint8_t>(0x70 | (digest[0] & 0x0f));
  const std::string pub2 = platform::Base64::encode(der, 64, "\r\n");
  const std::string text = app + "\n" + pub2;
  std::vector<uint8_t> signature;
  for (size_t at = 0; at < text.size(); at += 256) {
    const std::string slice = text.substr(at, 256);
    auto block =
        instanceKey().rawPrivateOperation(std::span(reinterpret_cast<const uint8_t*>(slice.data()), slice.size()));
    signature.insert(signature.end(), block->begin(), block->end());
  }
  return "&appid=" + websafe(std::span(digest.data(), 8)) + "&pub2=" + pub2 + "&sig=" + websafe(signature);
}

class RegistrationServerTest : public ::testing::Test {
 protected:
  RegistrationServerTest() : authority(dir.path() / "ca") {
    EXPECT_TRUE(authority.ensure());
    device = devices->issue(4'611'686'018'427'387'904u);
    device.versionInfo = "v7";
    devices->update(device);
    RegistrationServerOptions options;
    options.certificateFile = authority.certificateFile();
    options.keyFile = authority.keyFile();
    options.devices = devices;
    server = std::make_unique<RegistrationServer>(options);
    EXPECT_TRUE(server->start());
    client = std::make_unique<httplib::SSLClient>("127.0.0.1", server->port());
    client->set_ca_cert_path(authority.caFile().c_str());
    client->enable_server_certificate_verification(true);
  }

  std::string fetchBody(const std::string& scope = "MSG", int kid = 1, const std::string& sender = "1009") {
    return "sender=" + sender + "&app=" + kApp + "&device=" + device.idText + "&app_ver=2.1&X-subtype=" + sender +
           "&X-scope=" + scope + "&plat=2&X-kid=" + std::to_string(kid) + "&X-msg_ver=1.2.0" + keyPart() +
           "&apns_token=p_ab";
  }
  std::string deleteBody(const std::string& scope, bool withKey = true) {
    return "device=" + device.idText + "&app=" + kApp + "&app_ver=2.1&X-scope=" + scope + "&X-kid=9&delete=true" +
           (withKey ? keyPart() : "");
  }
  httplib::Result send(const std::string& body, std::string authorization = "", const std::string& app = kApp) {
    if (authorization.empty()) authorization = device.idText + ":" + device.secret;
    httplib::Headers headers{{"Authorization", "DeviceLogin " + authorization}, {"app", app}, {"info", "v7"}};
    return client->Post("/iid/register", headers, body, "application/x-www-form-urlencoded");
  }
  std::string answer(const std::string& body, const std::string& authorization = "") {
    auto result = send(body, authorization);
    return result ? result->body : "(no answer)";
  }

  testing::LogCapture log;
  testing::TempDir dir;
  BackendCertificateAuthority authority;
  std::shared_ptr<CheckinDeviceRegistry> devices = std::make_shared<CheckinDeviceRegistry>();
  CheckinDevice device;
  std::unique_ptr<RegistrationServer> server;
  std::unique_ptr<httplib::SSLClient> client;
};

TEST_F(RegistrationServerTest, IssuesOneTokenPerKeyAndScope) {
  const std::string first = answer(fetchBody("MSG", 1));
  ASSERT_EQ(first.rfind("token=1:", 0), 0u) << first;
  const std::string token = first.substr(8, first.size() - 9);
  const std::string appId = keyPart().substr(7, 11);
  EXPECT_EQ(token.rfind(appId + ":", 0), 0u);
  EXPECT_EQ(token.size(), 11u + 1 + 140);
  EXPECT_EQ(answer(fetchBody("MSG", 2)), "token=2:" + token + "\n");
  EXPECT_NE(answer(fetchBody("*", 3)), "token=3:" + token + "\n");
  ASSERT_EQ(server->tokens(device.idText).size(), 2u);
  EXPECT_EQ(server->tokens(device.idText)[0].sender, "1009");
  const auto records = server->requests();
  EXPECT_EQ(records[0].result, "token for 1009 scope MSG");
  EXPECT_NE(records[0].body.find("\r\n"), std::string::npos);
}

TEST_F(RegistrationServerTest, RefusesWhatTheClientCannotProve) {
  const std::string good = fetchBody();
  // Another websafe Base64 letter in place of one: still well formed, no longer the same.
  auto changeLetter = [](std::string body, size_t at) {
    body[at] = body[at] == 'A' ? 'B' : 'A';
    return body;
  };
  const std::string badSig = changeLetter(good, good.find("&sig=") + 10);
  const std::string wrongAppId = changeLetter(good, good.find("&appid=") + 9);
  std::string oneLinePub2 = good;
  std::erase(oneLinePub2, '\r');
  std::string reordered = good;
  reordered.replace(0, reordered.find("&app="), "device=" + device.idText);  // no sender first
  std::string otherDevice = good;
  otherDevice.replace(otherDevice.find(device.idText), device.idText.size(), "12");

  const std::string invalid = "Error=INVALID_PARAMETERS\n";
  EXPECT_EQ(answer(badSig), invalid);
  EXPECT_EQ(server->requests().back().result, "INVALID_PARAMETERS: sig does not verify");
  EXPECT_EQ(answer(wrongAppId), invalid);
  EXPECT_EQ(server->requests().back().result, "INVALID_PARAMETERS: appid is not the identity of pub2");
  EXPECT_EQ(answer(oneLinePub2), invalid);
  EXPECT_EQ(answer(reordered), invalid);
  EXPECT_EQ(answer(otherDevice), invalid);
  EXPECT_EQ(send(good, "", "com.other.app")->body, invalid);
  EXPECT_EQ(answer(good.substr(0, good.find("&sig="))), invalid);

  const std::string failed = "Error=AUTHENTICATION_FAILED\n";
  EXPECT_EQ(answer(good, device.idText + ":1"), failed);
  EXPECT_EQ(answer(good, "12:" + device.secret), failed);
  EXPECT_EQ(answer(good, "no-such-auth-token"), failed);
  EXPECT_TRUE(server->tokens(device.idText).empty());
  EXPECT_TRUE(log.contains("registration server: INVALID_PARAMETERS: sig does not verify"));
}

TEST_F(RegistrationServerTest, DeletesOneScopeAllScopesAndOnReinstall) {
  answer(fetchBody("MSG", 1));
  answer(fetchBody("news", 2));
  answer(fetchBody("extra", 3));
  EXPECT_EQ(answer(deleteBody("news")), "deleted=news\n");
  EXPECT_EQ(server->tokens(device.idText).size(), 2u);
  EXPECT_EQ(answer(deleteBody("MSG", false)), "deleted=MSG\n");
  ASSERT_EQ(server->tokens(device.idText).size(), 1u);
  EXPECT_EQ(server->tokens(device.idText)[0].scope, "extra");
  EXPECT_EQ(answer(deleteBody("extra", false)), "Error=INVALID_PARAMETERS\n");
  EXPECT_EQ(answer(deleteBody("*")), "deleted=*\n");
  EXPECT_TRUE(server->tokens(device.idText).empty());
}

TEST_F(RegistrationServerTest, SwitchesChangeTheNextAnswers) {
  server->addSwitch({RegistrationSwitch::Kind::Error, "PHONE_REGISTRATION_ERROR", 1});
  EXPECT_EQ(answer(fetchBody("MSG", 1)), "Error=PHONE_REGISTRATION_ERROR\n");
  const std::string plain = answer(fetchBody("MSG", 2));
  const std::string token = plain.substr(8, plain.size() - 9);

  server->addSwitch({RegistrationSwitch::Kind::StructuredToken, "SYNC", 1});
  server->addSwitch({RegistrationSwitch::Kind::AuthToken, "", 1});
  auto structured = send(fetchBody("MSG", 3));
  EXPECT_EQ(structured->body, "token=|ID|3|SYNC|:" + token + "\n");
  const std::string authToken = structured->get_header_value("X-iid-auth");
  ASSERT_FALSE(authToken.empty());
  EXPECT_EQ(answer(fetchBody("MSG", 4), authToken), "token=4:" + token + "\n");
  EXPECT_EQ(answer(fetchBody("MSG", 5, "2020"), authToken), "Error=AUTHENTICATION_FAILED\n");

  server->addSwitch({RegistrationSwitch::Kind::WrongRequestId, "", 1});
  server->addSwitch({RegistrationSwitch::Kind::ServerError, "", 1});
  auto wrong = send(fetchBody("MSG", 6));
  EXPECT_EQ(wrong->status, 500);
  EXPECT_EQ(wrong->body, "token=7:" + token + "\n");

  server->addSwitch({RegistrationSwitch::Kind::EmptyBody, "", 0});
  EXPECT_EQ(answer(fetchBody("MSG", 8)), "");
  EXPECT_EQ(answer(deleteBody("other")), "");
  server->clearSwitches();
  EXPECT_EQ(answer(fetchBody("MSG", 9)), "token=9:" + token + "\n");

  EXPECT_EQ(client->Post("/_admin/switches", R"({"switch": "drop", "count": 1})", "application/json")->status, 200);
  EXPECT_FALSE(send(fetchBody("MSG", 10)));
  EXPECT_EQ(client->Post("/_admin/switches", R"({"switch": "nonsense"})", "application/json")->status, 400);
  const auto listed = nlohmann::json::parse(client->Get(("/_admin/tokens?device=" + device.idText).c_str())->body);
  ASSERT_EQ(listed.size(), 1u);
  EXPECT_EQ(listed[0]["token"], token);
  const auto records = nlohmann::json::parse(client->Get("/_admin/requests")->body);
  EXPECT_EQ(records.back()["result"], "dropped (switch)");
}

}  // namespace
}  // namespace quillet::backend
