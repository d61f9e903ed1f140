#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "backend/relay/RelayServer.h"
#include "messaging/connection/MSGConnection.h"
#include "messaging/schema/MSGProtoTag.h"
#include "support/LogCapture.h"
#include "support/TempDir.h"
#include "support/TestCertificates.h"

namespace quillet::messaging {
namespace {

using backend::RelayFault;

struct Client : MSGConnectionDelegate, MSGConnectionResender {
  std::shared_ptr<MSGRmqManager> manager;
  std::vector<int> closes;
  int logins = 0;
  int resends = 0;
  std::vector<RelayDataMessageStanza> messages;
  std::vector<std::vector<std::string>> acks;

  void connectionDidCloseForReason(MSGConnection&, int reason) override { closes.push_back(reason); }
  void didLoginWithConnection(MSGConnection&) override { ++logins; }
  void connectionDidRecieveMessage(MSGConnection&, const RelayDataMessageStanza& message) override {
    messages.push_back(message);
  }
  int32_t connectionDidReceiveAckForRmqIds(MSGConnection&, const std::vector<std::string>& ids) override {
    acks.push_back(ids);
    return manager->removeRmqMessagesWithRmqIds(ids);
  }
  void resendMessagesWithConnection(MSGConnection&) override { ++resends; }
};

class ConnectionTest : public ::testing::Test {
 protected:
  ConnectionTest() : certificates(testing::makeTestCertificates(dir.path() / "certs")) {
    backend::RelayServerOptions options;
    options.certificateFile = certificates.certFile;
    options.keyFile = certificates.keyFile;
    options.adminPort = -1;
    options.credentials = {{kDevice, "secret"}};
    server = std::make_unique<backend::RelayServer>(options);
    EXPECT_TRUE(server->start());
    client->manager = std::make_shared<MSGRmqManager>("rmq2", fileSystem);
    client->manager->loadRmqId();
  }
  ~ConnectionTest() override {
    connection.reset();
    server->stop();
  }

  void makeConnection(const std::string& token = "secret") {
    platform::TlsStreamOptions tls;
    tls.caFile = certificates.caFile;
    connection = std::make_unique<MSGConnection>(kDevice, token, "127.0.0.1", server->port(), loop, client->manager,
                                                 client, MSGSecureSocket::tlsStreamFactory(tls));
    connection->setDelegate(client);
  }
  bool waitFor(const std::function<bool()>& predicate) { return loop.runUntil(predicate, 10); }
  void login() {
    makeConnection();
    connection->signIn();
    ASSERT_TRUE(waitFor([&] { return connection->state() == MSGConnection::kStateSignedIn; }));
    // The first ping goes right after login; wait for the server's answer.
    ASSERT_TRUE(waitFor([&] { return connection->inStreamId() == 2; }));
  }
  int receivedCount(int tag, int32_t extension = -1) {
    int count = 0;
    for (const auto& message : server->mailbox().received()) {
      if (message.tag != tag) continue;
      if (extension >= 0) {
        RelayIqStanza iq;
        iq.ParseFromString(message.body);
        if (!iq.has_extension() || iq.extension().id_p() != extension) continue;
      }
      ++count;
    }
    return count;
  }
  void queue(int count, bool immediateAck = false) {
    for (int i = 0; i < count; ++i) {
      RelayDataMessageStanza stanza;
      stanza.set_from("sender");
      stanza.set_category("com.quillet.app");
      if (immediateAck) stanza.set_immediateack(true);
      server->queueDataMessage(kDevice, stanza);
    }
  }

  static constexpr const char* kDevice = "4660";
  testing::LogCapture log;
  testing::TempDir dir;
  testing::TestCertificates certificates;
  std::shared_ptr<platform::FileSystem> fileSystem = std::make_shared<platform::FileSystem>(dir.path());
  platform::RunLoop loop{std::make_shared<platform::ManualClock>()};
  std::unique_ptr<backend::RelayServer> server;
  std::shared_ptr<Client> client = std::make_shared<Client>();
  std::unique_ptr<MSGConnection> connection;
};

TEST_F(ConnectionTest, LogsInAndPingsAtOnce) {
  login();
  EXPECT_EQ(client->logins, 1);
  EXPECT_GT(connection->lastLoginServerTimestamp(), 0);
  EXPECT_EQ(connection->outStreamId(), 2);  // login request and ping
  EXPECT_TRUE(waitFor([&] { return receivedCount(kMSGProtoTagHeartbeatPing) == 1; }));
}

TEST_F(ConnectionTest, WrongSecretGetsLoginErrorAndStaysLoggingIn) {
  makeConnection("wrong");
  connection->signIn();
  ASSERT_TRUE(waitFor([&] { return connection->state() == MSGConnection::kStateLoggingIn; }));
  loop.runUntil([] { return false; }, 0.3);
  EXPECT_EQ(connection->state(), MSGConnection::kStateLoggingIn);
  EXPECT_EQ(client->logins, 0);
}

TEST_F(ConnectionTest, NineMessagesSendNoAckTheTenthSendsOne) {
  login();
  connection->sendStreamAck();  // the count starts from here
  ASSERT_EQ(connection->lastStreamIdAcked(), 2);
  queue(9);
  ASSERT_TRUE(waitFor([&] { return client->messages.size() == 9; }));
  EXPECT_EQ(connection->lastStreamIdAcked(), 2);
  EXPECT_EQ(connection->unackedS2dIds().size(), 9u);
  queue(1);
  ASSERT_TRUE(waitFor([&] { return client->messages.size() == 10; }));
  EXPECT_EQ(connection->lastStreamIdAcked(), 12);
  EXPECT_TRUE(connection->unackedS2dIds().empty());
  EXPECT_EQ(connection->ackedS2dMap().size(), 1u);
  EXPECT_EQ(client->manager->unackedS2dRmqIds().size(), 10u);
  EXPECT_TRUE(waitFor([&] { return receivedCount(kMSGProtoTagIqStanza, kMSGExtensionStreamAck) == 2; }));
  // The next ping's answer confirms the report: the stored ids go.
  loop.advance(30);
  ASSERT_TRUE(waitFor([&] { return connection->ackedS2dMap().empty(); }));
  EXPECT_TRUE(client->manager->unackedS2dRmqIds().empty());
}

TEST_F(ConnectionTest, ImmediateAckGoesOutAtOnce) {
  login();
  queue(1, true);
  ASSERT_TRUE(waitFor([&] { return client->messages.size() == 1; }));
  EXPECT_EQ(connection->lastStreamIdAcked(), connection->inStreamId());
  EXPECT_TRUE(waitFor([&] { return receivedCount(kMSGProtoTagIqStanza, kMSGExtensionStreamAck) == 1; }));
}

TEST_F(ConnectionTest, SelectiveAckRemovesStoredMessageAndResends) {
  login();
  RelayDataMessageStanza upstream;
  upstream.set_from("");
  upstream.set_category("com.quillet.app");
  ASSERT_TRUE(client->manager->saveRmqMessage(upstream, nullptr));
  connection->sendProto(upstream);
  ASSERT_EQ(connection->d2sInfos().size(), 1u);
  ASSERT_TRUE(waitFor([&] { return client->resends == 1; }));
  bool found = false;
  for (const auto& ids : client->acks) found = found || ids == std::vector<std::string>{upstream.persistentid()};
  EXPECT_TRUE(found);
  int stored = 0;
  client->manager->scanWithRmqMessageHandler([&](int64_t, int8_t, const std::vector<uint8_t>&) { ++stored; }, nullptr);
  EXPECT_EQ(stored, 0);
  EXPECT_EQ(receivedCount(kMSGProtoTagDataMessageStanza), 1);
  // The selective ack also carried the stream position: the d2s entry is confirmed (twice-called delegate).
  EXPECT_TRUE(connection->d2sInfos().empty());
}

TEST_F(ConnectionTest, PingThirtySecondsAfterAFrame) {
  login();
  loop.advance(29.9);
  EXPECT_EQ(connection->outStreamId(), 2);
  loop.advance(0.1);
  EXPECT_EQ(connection->outStreamId(), 3);
  EXPECT_TRUE(waitFor([&] { return receivedCount(kMSGProtoTagHeartbeatPing) == 2; }));
}

TEST_F(ConnectionTest, SilenceTimesOutTwentySecondsAfterThePing) {
  login();
  server->setFault(RelayFault::Silence);
  loop.advance(30);  // ping, unanswered
  loop.runUntil([] { return false; }, 0.2);
  loop.advance(19.9);
  EXPECT_TRUE(client->closes.empty());
  loop.advance(0.1);
  EXPECT_EQ(client->closes, std::vector<int>{MSGConnectionDelegate::kCloseReasonTimeout});
  EXPECT_EQ(connection->state(), MSGConnection::kStateDisconnected);
}

TEST_F(ConnectionTest, ServerCloseDisconnectsWithoutTellingTheDelegate) {
  login();
  server->setFault(RelayFault::CloseFrame);
  ASSERT_TRUE(waitFor([&] { return connection->state() == MSGConnection::kStateDisconnected; }));
  loop.runUntil([] { return false; }, 0.2);
  EXPECT_TRUE(client->closes.empty());
}

TEST_F(ConnectionTest, ReconnectReportsUnconfirmedIdsAgain) {
  login();
  connection->sendStreamAck();
  queue(3);
  ASSERT_TRUE(waitFor([&] { return client->messages.size() == 3; }));
  std::vector<std::string> ids = connection->unackedS2dIds();
  connection->sendStreamAck();  // reported in this message, not yet confirmed
  ASSERT_EQ(connection->ackedS2dMap().size(), 1u);
  server->dropConnections();
  ASSERT_TRUE(waitFor([&] { return !client->closes.empty(); }));
  EXPECT_EQ(client->closes[0], MSGConnectionDelegate::kCloseReasonSocketDisconnected);
  // A new connection object reads them from the store; the old one resets its map.
  connection->signIn();
  ASSERT_TRUE(waitFor([&] { return connection->state() == MSGConnection::kStateSignedIn; }));
  EXPECT_EQ(connection->inStreamId(), 1);
  RelayLoginRequest lastLogin;
  ASSERT_TRUE(waitFor([&] {
    for (const auto& message : server->mailbox().received()) {
      if (message.tag == kMSGProtoTagLoginRequest) lastLogin.ParseFromString(message.body);
    }
    return lastLogin.receivedpersistentidarray_size() > 0;
  }));
  EXPECT_EQ(std::vector<std::string>(lastLogin.receivedpersistentidarray().begin(),
                                     lastLogin.receivedpersistentidarray().end()),
            ids);
  // The login response's position is not read; the answer to the first ping
  // confirms the login's report, and the stored ids go.
  EXPECT_TRUE(waitFor([&] { return client->manager->unackedS2dRmqIds().empty(); }));
  EXPECT_EQ(client->messages.size(), 3u);  // nothing delivered twice
}

TEST_F(ConnectionTest, IdsReportedAtLoginAreNotSentAgainButHeldOnesAre) {
  login();
  queue(2);
  ASSERT_TRUE(waitFor([&] { return client->messages.size() == 2; }));
  server->dropConnections();  // before the device sent anything that acknowledges them
  ASSERT_TRUE(waitFor([&] { return !client->closes.empty(); }));
  queue(1);  // held while the device is away
  makeConnection();
  EXPECT_EQ(connection->unackedS2dIds().size(), 2u);  // read back from the store
  connection->signIn();
  ASSERT_TRUE(waitFor([&] { return client->messages.size() == 3; }));
  loop.runUntil([] { return false; }, 0.3);
  EXPECT_EQ(client->messages.size(), 3u);
  EXPECT_EQ(client->messages[2].persistentid(), "3");
}

class MisbehavingServerTest : public ConnectionTest, public ::testing::WithParamInterface<RelayFault> {};

TEST_P(MisbehavingServerTest, BadBytesCloseTheConnection) {
  login();
  server->setFault(GetParam());
  ASSERT_TRUE(waitFor([&] { return connection->state() == MSGConnection::kStateDisconnected; }));
  EXPECT_EQ(client->closes, std::vector<int>{MSGConnectionDelegate::kCloseReasonSocketDisconnected});
}

INSTANTIATE_TEST_SUITE_P(Faults, MisbehavingServerTest,
                         ::testing::Values(RelayFault::NegativeTag, RelayFault::OversizedFrame,
                                           RelayFault::DropMidFrame));

TEST_F(ConnectionTest, WrongVersionByteAndSplitFrames) {
  server->setFault(RelayFault::WrongVersion);
  makeConnection();
  connection->signIn();
  ASSERT_TRUE(waitFor([&] { return !client->closes.empty(); }));
  EXPECT_EQ(client->logins, 0);
  server->clearFaults();
  server->setFault(RelayFault::SplitBytes);
  client->closes.clear();
  connection->signIn();
  ASSERT_TRUE(waitFor([&] { return connection->state() == MSGConnection::kStateSignedIn; }));
  queue(2);
  ASSERT_TRUE(waitFor([&] { return client->messages.size() == 2; }));
}

TEST(StreamAckTest, SerializesEmptyRequiredStrings) {
  RelayIqStanza ack = MSGConnection::createStreamAck();
  ASSERT_TRUE(ack.IsInitialized());
  RelayIqStanza parsed;
  ASSERT_TRUE(parsed.ParseFromString(ack.SerializeAsString()));
  EXPECT_EQ(parsed.type(), 1);
  EXPECT_TRUE(parsed.has_id_p());
  EXPECT_TRUE(parsed.extension().has_data_p());
  EXPECT_EQ(parsed.extension().id_p(), 13);
}

}  // namespace
}  // namespace quillet::messaging
