#include "messaging/rmq/MSGRmq2PersistentStore.h"

#include <sqlite3.h>

#include <algorithm>
#include <string_view>

#include "platform/log/Log.h"

namespace quillet::messaging {

using platform::Error;
using platform::SqliteStatement;
using platform::Value;
using Step = SqliteStatement::StepResult;

namespace {

constexpr const char* kCreateOutgoing =
    "create TABLE IF NOT EXISTS %@%@ (_id INTEGER PRIMARY KEY, rmq_id INTEGER, type INTEGER, ts INTEGER, data BLOB)";
constexpr const char* kCreateLastRmqId = "create TABLE IF NOT EXISTS %@%@ (_id INTEGER PRIMARY KEY, rmq_id INTEGER)";
constexpr const char* kCreateS2dRmqIds = "create TABLE IF NOT EXISTS %@%@ (_id INTEGER PRIMARY KEY, rmq_id TEXT)";
constexpr const char* kCreateSyncMessages =
    "create TABLE IF NOT EXISTS %@%@ (_id INTEGER PRIMARY KEY, rmq_id TEXT, expiration_ts INTEGER, apns_recv "
    "INTEGER, relay_recv INTEGER)";
constexpr const char* kDropTable = "drop TABLE if exists %@%@";
constexpr int kDeleteBatchSize = 100;
constexpr const char* kSyncErrorDomain = "com.stikri.msg";

// Fills each "%@" of `format` with the next of `args`, in order.
std::string fill(std::string_view format, std::initializer_list<std::string_view> args) {
  std::string out;
  auto next = args.begin();
  for (size_t i = 0; i < format.size(); ++i) {
    if (format[i] == '%' && i + 1 < format.size() && format[i + 1] == '@' && next != args.end()) {
      out.append(*next++);
      ++i;
    } else {
      out.push_back(format[i]);
    }
  }
  return out;
}

Error syncError(int code, const char* text) {
  Value userInfo = Value::dictionary({});
  userInfo.set("error", Value(std::string(text)));
  return Error(kSyncErrorDomain, code, std::move(userInfo));
}

}  // namespace

MSGRmq2PersistentStore::MSGRmq2PersistentStore(std::string databaseName,
                                               std::shared_ptr<platform::FileSystem> fileSystem,
                                               std::shared_ptr<platform::Clock> clock)
    : name_(std::move(databaseName)),
      fileSystem_(std::move(fileSystem)),
      clock_(clock ? std::move(clock) : platform::Clock::system()) {
  openDatabase(name_);
}

std::filesystem::path MSGRmq2PersistentStore::pathForDatabase(const std::string& databaseName) const {
  return fileSystem_->documentsDirectory() / (databaseName + ".sqlite");
}

void MSGRmq2PersistentStore::removeDatabase(const std::string& databaseName) {
  const auto path = pathForDatabase(databaseName);
  fileSystem_->removeItem(path);
  // The write-ahead log and its index go with the file.
  platform::SqliteDatabase::removeFiles(path.string());
}

void MSGRmq2PersistentStore::openDatabase(const std::string& databaseName) {
  const auto path = pathForDatabase(databaseName);
  const bool didExist = fileSystem_->fileExists(path);
  database_ = platform::SqliteDatabase::open(path.string());
  if (!didExist) {
    createTableWithName(kTableOutgoingRmqMessages, kCreateOutgoing);
    createTableWithName(kTableLastRmqId, kCreateLastRmqId);
    createTableWithName(kTableS2dRmqIds, kCreateS2dRmqIds);
  } else if (database_) {
    updateDbWithStringRmqID();
  }
  if (database_) createTableWithName(kTableSyncMessages, kCreateSyncMessages);
}

void MSGRmq2PersistentStore::updateDbWithStringRmqID() {
  // The former table held ids as integers; its ids are given up.
  createTableWithName(kTableS2dRmqIds, kCreateS2dRmqIds);
  dropTableWithName(kTableOldS2dRmqIds);
}

void MSGRmq2PersistentStore::createTableWithName(const std::string& tableName, const char* command) {
  if (!database_ || !database_->exec(fill(command, {"", tableName}))) {
    logError();
    removeDatabase(name_);
  }
}

void MSGRmq2PersistentStore::dropTableWithName(const std::string& tableName) {
  if (!database_ || !database_->exec(fill(kDropTable, {"", tableName}))) {
    platform::Log::write("Failed to remove table " + tableName);
  }
}

std::optional<SqliteStatement> MSGRmq2PersistentStore::prepare(const std::string& sql) {
  if (!database_) return std::nullopt;
  auto statement = database_->prepare(sql);
  if (!statement) logError();
  return statement;
}

bool MSGRmq2PersistentStore::saveUnackedS2dMessageWithRmqId(const std::string& rmqId) {
  auto statement = prepare(fill("INSERT INTO %@ (%@) VALUES (?)", {kTableS2dRmqIds, "rmq_id"}));
  if (!statement) return false;
  if (!statement->bindText(1, rmqId) || statement->step() != Step::Done) {
    logErrorAndFinalizeStatement(*statement);
    return false;
  }
  return true;
}

bool MSGRmq2PersistentStore::saveMessageWithRmqId(int64_t rmqId, int8_t tag, std::span<const uint8_t> data,
                                                  Error* error) {
  auto statement = prepare(
      fill("INSERT INTO %@ (%@, %@, %@) VALUES (?, ?, ?)", {kTableOutgoingRmqMessages, "rmq_id", "type", "data"}));
  if (!statement) {
    // Kept as the queue has always reported it: SQLite's message is the
    // error's domain and its code the code; callers read them so.
    if (error) *error = Error(lastErrorMessage(), lastErrorCode());
    return false;
  }
  if (!statement->bindInt64(1, rmqId) || !statement->bindInt64(2, tag) || !statement->bindBlob(3, data) ||
      statement->step() != Step::Done) {
    logErrorAndFinalizeStatement(*statement);
    return false;
  }
  return true;
}

int64_t MSGRmq2PersistentStore::queryRmqIdFromTable(const char* tableName) {
  auto statement = prepare(fill("SELECT %@ FROM %@ ORDER BY %@ DESC LIMIT ", {"rmq_id", tableName, "rmq_id"}) + "1");
  if (!statement) return 0;
  int64_t rmqId = 0;
  if (statement->step() == Step::Row) rmqId = statement->columnInt64(0);
  return rmqId;
}

int64_t MSGRmq2PersistentStore::queryHighestRmqId() { return queryRmqIdFromTable(kTableOutgoingRmqMessages); }

int64_t MSGRmq2PersistentStore::queryLastRmqId() { return queryRmqIdFromTable(kTableLastRmqId); }

bool MSGRmq2PersistentStore::updateLastOutgoingRmqId(int64_t rmqId) {
  auto statement =
      prepare(fill("INSERT OR REPLACE INTO %@ (%@, %@) VALUES (?, ?)", {kTableLastRmqId, "_id", "rmq_id"}));
  if (!statement) return false;
  if (!statement->bindInt64(1, 1) || !statement->bindInt64(2, rmqId) || statement->step() != Step::Done) {
    logErrorAndFinalizeStatement(*statement);
    return false;
  }
  return true;
}

std::vector<std::string> MSGRmq2PersistentStore::unackedS2dRmqIds() {
  std::vector<std::string> ids;
  auto statement = prepare(fill("SELECT %@ FROM %@ ORDER BY %@ ASC", {"rmq_id", kTableS2dRmqIds, "rmq_id"}));
  if (!statement) return ids;
  while (statement->step() == Step::Row) ids.push_back(statement->columnText(0));
  return ids;
}

void MSGRmq2PersistentStore::scanOutgoingRmqMessagesWithHandler(const RmqMessageHandler& handler) {
  auto statement = prepare(fill("SELECT %@ FROM %@ WHERE %@ != 0 ORDER BY %@ ASC",
                                {"rmq_id, type, data", kTableOutgoingRmqMessages, "rmq_id", "rmq_id"}));
  if (!statement) return;
  while (statement->step() == Step::Row) {
    handler(statement->columnInt64(0), static_cast<int8_t>(statement->columnInt64(1)), statement->columnBlob(2));
  }
}

int MSGRmq2PersistentStore::deleteMessagesFromTable(const std::string& tableName,
                                                    const std::vector<std::string>& rmqIds) {
  const bool idsAreText = tableName == kTableS2dRmqIds || tableName == kTableSyncMessages;
  int deleted = 0;
  for (size_t start = 0; start < rmqIds.size(); start += kDeleteBatchSize) {
    const size_t end = std::min(rmqIds.size(), start + kDeleteBatchSize);
    std::string head = fill("DELETE FROM %@ WHERE ", {tableName});
    std::string conditions;
    for (size_t i = start; i < end; ++i) conditions.append(fill("%@ = ? OR ", {"rmq_id"}));
    conditions.resize(conditions.size() - 4);
    auto statement = prepare(fill("%@ %@", {head, conditions}));
    if (!statement) return deleted;
    for (size_t i = start; i < end; ++i) {
      const int index = static_cast<int>(i - start) + 1;
      const bool bound = idsAreText ? statement->bindText(index, rmqIds[i])
                                    : statement->bindInt64(index, std::strtoll(rmqIds[i].c_str(), nullptr, 10));
      if (!bound) {
        logErrorAndFinalizeStatement(*statement);
        return deleted;
      }
    }
    if (statement->step() != Step::Done) {
      logErrorAndFinalizeStatement(*statement);
      return deleted;
    }
    deleted += database_->changes();
  }
  return deleted;
}

std::optional<MSGPersistentSyncMessage> MSGRmq2PersistentStore::querySyncMessageWithRmqID(const std::string& rmqID) {
  // The id goes into the statement as text, unescaped, by design: ids are
  // decimal digits, and one holding a quote breaks the query, which then
  // finds nothing (and logs the failure) rather than being bound safely.
  auto statement = prepare(fill("SELECT %@ FROM %@ WHERE %@ = '%@'",
                                {"rmq_id, expiration_ts, apns_recv, relay_recv", kTableSyncMessages, "rmq_id", rmqID}));
  if (!statement) return std::nullopt;
  std::optional<MSGPersistentSyncMessage> found;
  while (statement->step() == Step::Row) {
    MSGPersistentSyncMessage message;
    message.rmqID = statement->columnText(0);
    message.expirationTime = statement->columnInt64(1);
    message.apnsReceived = statement->columnInt64(2) != 0;
    message.relayReceived = statement->columnInt64(3) != 0;
    found = std::move(message);
  }
  return found;
}

int MSGRmq2PersistentStore::deleteExpiredOrFinishedSyncMessages(Error* error) {
  const std::string now = std::to_string(clock_->wallWholeSeconds());
  const std::string sql = fill("DELETE FROM %@ WHERE %@ < ", {kTableSyncMessages, "expiration_ts"}) + now +
                          fill(" OR (%@ = 1 AND %@ = 1)", {"apns_recv", "relay_recv"});
  auto statement = prepare(sql);
  if (!statement || statement->step() != Step::Done) {
    if (error) *error = syncError(lastErrorCode(), "Failed to save delete expired sync messages from store.");
    if (statement) logErrorAndFinalizeStatement(*statement);
    return 0;
  }
  return database_->changes();
}

bool MSGRmq2PersistentStore::saveSyncMessageWithRmqID(const std::string& rmqID, int64_t expirationTime,
                                                      bool apnsReceived, bool relayReceived, Error* error) {
  auto statement = prepare(fill("INSERT INTO %@ (%@, %@, %@, %@) VALUES (?, ?, ?, ?)",
                                {kTableSyncMessages, "rmq_id", "expiration_ts", "apns_recv", "relay_recv"}));
  if (!statement || !statement->bindText(1, rmqID) || !statement->bindInt64(2, expirationTime) ||
      !statement->bindInt64(3, apnsReceived ? 1 : 0) || !statement->bindInt64(4, relayReceived ? 1 : 0) ||
      statement->step() != Step::Done) {
    if (error) *error = syncError(lastErrorCode(), "Failed to save sync message to store.");
    if (statement) logErrorAndFinalizeStatement(*statement);
    return false;
  }
  return true;
}

bool MSGRmq2PersistentStore::updateSyncMessageWithColumn(const char* column, const std::string& rmqID, Error* error) {
  auto statement =
      prepare(fill("UPDATE %@ SET %@ = ", {kTableSyncMessages, column}) + "1" + fill(" WHERE %@ = ?", {"rmq_id"}));
  if (!statement || !statement->bindText(1, rmqID) || statement->step() != Step::Done) {
    if (error) *error = syncError(lastErrorCode(), "Failed to update sync message");
    if (statement) logErrorAndFinalizeStatement(*statement);
    return false;
  }
  return true;
}

bool MSGRmq2PersistentStore::updateSyncMessageViaAPNSWithRmqID(const std::string& rmqID, Error* error) {
  return updateSyncMessageWithColumn("apns_recv", rmqID, error);
}

bool MSGRmq2PersistentStore::updateSyncMessageViaRelayWithRmqID(const std::string& rmqID, Error* error) {
  return updateSyncMessageWithColumn("relay_recv", rmqID, error);
}

bool MSGRmq2PersistentStore::deleteSyncMessageWithRmqID(const std::string& rmqID) {
  return deleteMessagesFromTable(kTableSyncMessages, {rmqID}) > 0;
}

std::string MSGRmq2PersistentStore::lastErrorMessage() const {
  return database_ ? sqlite3_errmsg(database_->handle()) : "unable to open database file";
}

int MSGRmq2PersistentStore::lastErrorCode() const {
  return database_ ? sqlite3_errcode(database_->handle()) : SQLITE_CANTOPEN;
}

void MSGRmq2PersistentStore::logError() {
  platform::Log::writef("%s error: code (%d) message: %s", "MSGRmqStore:", lastErrorCode(), lastErrorMessage().c_str());
}

void MSGRmq2PersistentStore::logErrorAndFinalizeStatement(SqliteStatement& statement) {
  logError();
  statement.finalize();
}

}  // namespace quillet::messaging
