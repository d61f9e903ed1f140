#include <gtest/gtest.h>
#include <httplib.h>
#include <nlohmann/json.hpp>

#include <memory>

#include "backend/authority/BackendCertificateAuthority.h"
#include "backend/relay/RelayServer.h"
#include "messaging/socket/MSGSecureSocket.h"
#include "support/LogCapture.h"
#include "support/TempDir.h"

namespace quillet::backend {
namespace {

struct SocketWatcher : messaging::MSGSecureSocketDelegate {
  bool connected = false, disconnected = false;
  void secureSocketDidConnect(messaging::MSGSecureSocket&) override { connected = true; }
  void didDisconnectWithSecureSocket(messaging::MSGSecureSocket&) override { disconnected = true; }
  void secureSocketDidReceiveData(messaging::MSGSecureSocket&, std::span<const uint8_t>, int8_t) override {}
  void secureSocketDidSendProtoWithTag(messaging::MSGSecureSocket&, int8_t,
                                       const std::optional<std::string>&) override {}
};

class RelayServerTest : public ::testing::Test {
 protected:
  RelayServerTest() : authority(dir.path() / "ca") {
    EXPECT_TRUE(authority.ensure());
    RelayServerOptions options;
    options.certificateFile = authority.certificateFile();
    options.keyFile = authority.keyFile();
    options.credentials = {{"7", "s"}};
    server = std::make_unique<RelayServer>(options);
    EXPECT_TRUE(server->start());
  }

  testing::LogCapture log;
  testing::TempDir dir;
  BackendCertificateAuthority authority;
  std::unique_ptr<RelayServer> server;
};

TEST_F(RelayServerTest, AuthorityIsReusedAndTrustedAndLoginMustComeFirst) {
  const auto before = std::filesystem::last_write_time(authority.caFile());
  EXPECT_TRUE(BackendCertificateAuthority(dir.path() / "ca").ensure());
  EXPECT_EQ(std::filesystem::last_write_time(authority.caFile()), before);

  platform::RunLoop loop{std::make_shared<platform::ManualClock>()};
  platform::TlsStreamOptions tls;
  tls.caFile = authority.caFile();
  SocketWatcher watcher;
  messaging::MSGSecureSocket socket(messaging::MSGSecureSocket::tlsStreamFactory(tls));
  socket.setDelegate(&watcher);
  socket.connectToHost("127.0.0.1", static_cast<uint16_t>(server->port()), loop);
  ASSERT_TRUE(loop.runUntil([&] { return watcher.connected; }, 10));
  socket.sendData({}, 0, std::nullopt);  // a ping before any login
  EXPECT_TRUE(loop.runUntil([&] { return watcher.disconnected; }, 10));
  EXPECT_TRUE(log.contains("relay: frame with tag 0 before login"));
}

TEST_F(RelayServerTest, AdminQueuesListsAndRejectsBadInput) {
  httplib::Client admin(server->adminUrl());
  auto queued = admin.Post("/relay/messages", R"({"device": "7", "data": {"post_id": "12"}})", "application/json");
  ASSERT_TRUE(queued);
  EXPECT_EQ(queued->status, 200);
  EXPECT_EQ(nlohmann::json::parse(queued->body)["persistentId"], "1");
  auto listed = admin.Get("/relay/messages");
  ASSERT_TRUE(listed);
  auto body = nlohmann::json::parse(listed->body);
  ASSERT_EQ(body["held"].size(), 1u);
  EXPECT_EQ(body["held"][0]["state"], "queued");
  EXPECT_EQ(body["held"][0]["data"]["post_id"], "12");
  EXPECT_EQ(admin.Post("/relay/messages", "not json", "application/json")->status, 400);
  EXPECT_EQ(admin.Post("/relay/_control", R"({"fault": "nonsense"})", "application/json")->status, 400);
  EXPECT_EQ(admin.Post("/relay/_control", R"({"fault": "silence"})", "application/json")->status, 200);
  EXPECT_TRUE(server->mailbox().hasMode(RelayFault::Silence));
}

TEST(RelayMailboxTest, AcceptsStaticPairsAndCheckedInDevices) {
  auto devices = std::make_shared<CheckinDeviceRegistry>();
  RelayMailbox mailbox({{"7", "s"}}, devices);
  const CheckinDevice device = devices->issue();
  EXPECT_TRUE(mailbox.checkCredentials("7", "s"));
  EXPECT_TRUE(mailbox.checkCredentials(device.idText, device.secret));
  EXPECT_FALSE(mailbox.checkCredentials(device.idText, "s"));
  EXPECT_FALSE(mailbox.checkCredentials(device.idText, ""));
  EXPECT_FALSE(RelayMailbox({}, nullptr).checkCredentials(device.idText, device.secret));
}

}  // namespace
}  // namespace quillet::backend
