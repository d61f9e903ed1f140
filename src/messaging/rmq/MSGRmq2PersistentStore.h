#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "messaging/rmq/MSGPersistentSyncMessage.h"
#include "platform/clock/Clock.h"
#include "platform/data/SqliteDatabase.h"
#include "platform/files/FileSystem.h"
#include "platform/value/Error.h"

namespace quillet::messaging {

// The SQLite file of the reliable message queue ("<name>.sqlite" in the
// documents directory): device-to-server messages not yet confirmed, the
// server-to-device ids not yet confirmed as reported, the high-water mark
// of rmq ids and the de-duplication table. Every statement is built from the
// fixed formats of this class. Failures are logged ("MSGRmqStore: error: ...")
// and answered with false, 0 or an empty result.
//
// Thread: one thread (the main run loop). The handle closes on destruction.
class MSGRmq2PersistentStore {
 public:
  static constexpr const char* kTableOutgoingRmqMessages = "outgoingRmqMessages";
  static constexpr const char* kTableLastRmqId = "lastrmqid";
  static constexpr const char* kTableS2dRmqIds = "s2dRmqIds_1";
  static constexpr const char* kTableOldS2dRmqIds = "s2dRmqIds";
  static constexpr const char* kTableSyncMessages = "incomingSyncMessages";

  using RmqMessageHandler = std::function<void(int64_t rmqId, int8_t tag, const std::vector<uint8_t>& data)>;

  // Opens (creating or migrating) "<databaseName>.sqlite" in `fileSystem`'s
  // documents directory. `clock` gives "now" for expiry; null: the system clock.
  MSGRmq2PersistentStore(std::string databaseName, std::shared_ptr<platform::FileSystem> fileSystem,
                         std::shared_ptr<platform::Clock> clock = nullptr);
  MSGRmq2PersistentStore(const MSGRmq2PersistentStore&) = delete;
  MSGRmq2PersistentStore& operator=(const MSGRmq2PersistentStore&) = delete;

  std::filesystem::path pathForDatabase(const std::string& databaseName) const;
  // Deletes the file (the open handle stays until the store goes).
  void removeDatabase(const std::string& databaseName);

  bool saveUnackedS2dMessageWithRmqId(const std::string& rmqId);
  bool saveMessageWithRmqId(int64_t rmqId, int8_t tag, std::span<const uint8_t> data, platform::Error* error);
  int64_t queryHighestRmqId();
  int64_t queryLastRmqId();
  bool updateLastOutgoingRmqId(int64_t rmqId);
  std::vector<std::string> unackedS2dRmqIds();
  void scanOutgoingRmqMessagesWithHandler(const RmqMessageHandler& handler);
  // Deletes rows whose rmq_id is one of `rmqIds`, 100 ids per statement; the
  // count deleted (up to the first failure).
  int deleteMessagesFromTable(const std::string& tableName, const std::vector<std::string>& rmqIds);

  // The de-duplication table.
  std::optional<MSGPersistentSyncMessage> querySyncMessageWithRmqID(const std::string& rmqID);
  int deleteExpiredOrFinishedSyncMessages(platform::Error* error);
  bool saveSyncMessageWithRmqID(const std::string& rmqID, int64_t expirationTime, bool apnsReceived, bool relayReceived,
                                platform::Error* error);
  bool updateSyncMessageViaAPNSWithRmqID(const std::string& rmqID, platform::Error* error);
  bool updateSyncMessageViaRelayWithRmqID(const std::string& rmqID, platform::Error* error);
  bool deleteSyncMessageWithRmqID(const std::string& rmqID);

  std::string lastErrorMessage() const;
  int lastErrorCode() const;

 private:
  void openDatabase(const std::string& databaseName);
  void updateDbWithStringRmqID();
  void createTableWithName(const std::string& tableName, const char* command);
  void dropTableWithName(const std::string& tableName);
  std::optional<platform::SqliteStatement> prepare(const std::string& sql);
  int64_t queryRmqIdFromTable(const char* tableName);
  bool updateSyncMessageWithColumn(const char* column, const std::string& rmqID, platform::Error* error);
  void logError();
  void logErrorAndFinalizeStatement(platform::SqliteStatement& statement);

  std::string name_;
  std::shared_ptr<platform::FileSystem> fileSystem_;
  std::shared_ptr<platform::Clock> clock_;
  std::optional<platform::SqliteDatabase> database_;
};

}  // namespace quillet::messaging
