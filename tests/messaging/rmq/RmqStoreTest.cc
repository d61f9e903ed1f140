#include <gtest/gtest.h>
#include <fstream>
#include <memory>
#include <set>

#include "messaging/rmq/MSGRmqManager.h"
#include "platform/data/SqliteDatabase.h"
#include "support/KilledWriter.h"
#include "support/LogCapture.h"
#include "support/TempDir.h"

namespace quillet::messaging {
namespace {

class RmqStoreTest : public ::testing::Test {
 protected:
  std::unique_ptr<MSGRmqManager> open() {
    auto manager = std::make_unique<MSGRmqManager>("rmq2", fileSystem);
    manager->loadRmqId();
    return manager;
  }
  std::filesystem::path path() const { return fileSystem->documentsDirectory() / "rmq2.sqlite"; }
  RelayDataMessageStanza upstream(const std::string& category) {
    RelayDataMessageStanza stanza;
    stanza.set_from("");
    stanza.set_category(category);
    return stanza;
  }

  testing::LogCapture log;
  testing::TempDir dir;
  std::shared_ptr<platform::FileSystem> fileSystem = std::make_shared<platform::FileSystem>(dir.path());
};

TEST_F(RmqStoreTest, FirstStartMakesTablesAndSkipsOneId) {
  auto manager = open();
  EXPECT_EQ(manager->rmqId(), 1);
  auto database = platform::SqliteDatabase::open(path().string());
  for (const char* table : {"outgoingRmqMessages", "lastrmqid", "s2dRmqIds_1", "incomingSyncMessages"}) {
    EXPECT_FALSE(database->tableInfo(table)->empty()) << table;
  }
  auto stanza = upstream("app");
  ASSERT_TRUE(manager->saveRmqMessage(stanza, nullptr));
  EXPECT_EQ(stanza.persistentid(), "2");
}

TEST_F(RmqStoreTest, SavedMessageSurvivesRestartAndScansInIdOrder) {
  {
    auto manager = open();
    for (const char* category : {"one", "two", "three"}) {
      auto stanza = upstream(category);
      ASSERT_TRUE(manager->saveRmqMessage(stanza, nullptr));
    }
    RelayHeartbeatPing ping;
    ASSERT_TRUE(manager->saveMessage(ping, 0, 0, nullptr));  // id 0 is never scanned
  }
  auto manager = open();
  EXPECT_EQ(manager->rmqId(), 5);
  std::vector<int64_t> ids;
  std::vector<std::string> categories;
  manager->scanWithRmqMessageHandler(
      [&](int64_t id, int8_t tag, const std::vector<uint8_t>&) {
        ids.push_back(id);
        EXPECT_EQ(tag, 8);
      },
      [&](int64_t, const RelayDataMessageStanza& stanza) { categories.push_back(stanza.category()); });
  EXPECT_EQ(ids, (std::vector<int64_t>{2, 3, 4}));
  EXPECT_EQ(categories, (std::vector<std::string>{"one", "two", "three"}));
}

TEST_F(RmqStoreTest, IdsKeepRisingAfterAllAreRemovedAndRestart) {
  {
    auto manager = open();
    auto a = upstream("a"), b = upstream("b");
    manager->saveRmqMessage(a, nullptr);
    manager->saveRmqMessage(b, nullptr);
    EXPECT_EQ(manager->removeRmqMessagesWithRmqIds({"2", "3"}), 2);
    EXPECT_EQ(manager->queryHighestRmqId(), 0);
    EXPECT_EQ(manager->querylastRmqId(), 4);
  }
  auto manager = open();
  EXPECT_EQ(manager->rmqId(), 5);
  EXPECT_EQ(manager->nextRmqId(), 6);
}

TEST_F(RmqStoreTest, DeletesInBatchesOfHundred) {
  auto manager = open();
  std::vector<std::string> ids;
  for (int i = 0; i < 250; ++i) {
    ids.push_back("s2d-" + std::to_string(i));
    ASSERT_TRUE(manager->saveS2dMessageWithRmqId(ids.back()));
  }
  EXPECT_EQ(manager->removeS2dIds(ids), 250);
  EXPECT_TRUE(manager->unackedS2dRmqIds().empty());
  EXPECT_EQ(manager->removeS2dIds({}), 0);
}

TEST_F(RmqStoreTest, OldIntegerTableIsDroppedWithoutCopyingIds) {
  open();
  {
    auto database = platform::SqliteDatabase::open(path().string());
    ASSERT_TRUE(
        database->exec("CREATE TABLE s2dRmqIds (_id INTEGER PRIMARY KEY, rmq_id INTEGER);"
                       "INSERT INTO s2dRmqIds (rmq_id) VALUES (77);"));
  }
  auto manager = open();
  auto database = platform::SqliteDatabase::open(path().string());
  EXPECT_TRUE(database->tableInfo("s2dRmqIds")->empty());
  EXPECT_TRUE(manager->unackedS2dRmqIds().empty());
}

TEST_F(RmqStoreTest, ForeignFileIsRemovedAndNextStartIsClean) {
  std::filesystem::create_directories(path().parent_path());
  std::ofstream(path()) << std::string(4096, 'Q');
  {
    auto manager = open();
    EXPECT_FALSE(std::filesystem::exists(path()));
    EXPECT_FALSE(manager->saveS2dMessageWithRmqId("1"));
    EXPECT_TRUE(log.contains("MSGRmqStore: error: code ("));
  }
  auto manager = open();
  EXPECT_TRUE(manager->saveS2dMessageWithRmqId("1"));
  EXPECT_EQ(manager->unackedS2dRmqIds(), std::vector<std::string>{"1"});
}

TEST_F(RmqStoreTest, SyncMessagesAndQuotedIdFindsNothing) {
  auto manager = open();
  platform::Error error;
  ASSERT_TRUE(manager->saveSyncMessageWithRmqID("m1", 4'000'000'000, false, true, &error));
  ASSERT_TRUE(manager->updateSyncMessageViaAPNSWithRmqID("m1", &error));
  auto found = manager->querySyncMessageWithRmqID("m1");
  ASSERT_TRUE(found);
  EXPECT_TRUE(found->apnsReceived && found->relayReceived);
  EXPECT_FALSE(manager->querySyncMessageWithRmqID("m'1"));
  EXPECT_EQ(manager->deleteExpiredOrFinishedSyncMessages(&error), 1);
}

TEST_F(RmqStoreTest, AKilledProcessLosesNoSavedMessageOrS2dId) {
  open();  // the tables exist before the child starts
  std::unique_ptr<MSGRmqManager> writer;
  const int saved = testing::killWriterAfter(50, [&](int i) {
    if (!writer) writer = open();
    auto stanza = upstream(std::string(2000, 'p'));
    writer->saveRmqMessage(stanza, nullptr);
    writer->saveS2dMessageWithRmqId("s2d-" + std::to_string(i));
  });
  writer.reset();
  auto manager = open();
  auto database = platform::SqliteDatabase::open(path().string());
  EXPECT_EQ(*database->integrityCheck(), std::vector<std::string>{"ok"});
  int count = 0;
  manager->scanWithRmqMessageHandler(nullptr, [&](int64_t id, const RelayDataMessageStanza& stanza) {
    ++count;
    EXPECT_EQ(stanza.persistentid(), std::to_string(id));
    EXPECT_EQ(stanza.category().size(), 2000u);
  });
  EXPECT_GE(count, saved);
  const auto s2d = manager->unackedS2dRmqIds();
  std::set<std::string> ids(s2d.begin(), s2d.end());
  for (int i = 0; i < saved; ++i) EXPECT_TRUE(ids.count("s2d-" + std::to_string(i))) << i;
}

}  // namespace
}  // namespace quillet::messaging
