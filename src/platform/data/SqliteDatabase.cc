#include "platform/data/SqliteDatabase.h"

#include <sqlite3.h>
#include <sys/stat.h>

#include <atomic>
#include <filesystem>
#include <map>
#include <mutex>
#include <utility>

#include "platform/data/SqliteError.h"

namespace quillet::platform {

static_assert(SqliteDatabase::kOpenReadOnly == SQLITE_OPEN_READONLY);
static_assert(SqliteDatabase::kOpenReadWrite == SQLITE_OPEN_READWRITE);
static_assert(SqliteDatabase::kOpenCreate == SQLITE_OPEN_CREATE);
static_assert(SqliteDatabase::kOpenFullMutex == SQLITE_OPEN_FULLMUTEX);

namespace {

std::atomic<SqliteDurability> processDurability{SqliteDurability::WriteAheadLog};

// One idle connection per file, kept open for the life of the process. The
// stores open and close a connection per operation; were that the file's
// last connection, every open would rebuild the log's index by reading the
// whole log, and every close would fold the log back with disk syncs. With
// the keeper, the index stays in shared memory and the log is folded back
// only when it has grown (SQLite's automatic checkpoint, at a commit).
class LogKeepers {
 public:
  static LogKeepers& shared() {
    // Never destroyed: nothing is torn down at exit, and the log is recovered at the next start.
    static auto* keepers = new LogKeepers;
    return *keepers;
  }
  // Keeps a connection to the file at `path`; a keeper of a file that has
  // since been replaced at that path (removed by hand) is let go first.
  void keep(const std::string& path) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) return;
    std::lock_guard lock(mutex_);
    auto found = keepers_.find(path);
    if (found != keepers_.end()) {
      if (found->second.device == info.st_dev && found->second.inode == info.st_ino) return;
      sqlite3_close_v2(found->second.connection);
      keepers_.erase(found);
    }
    sqlite3* keeper = nullptr;
    if (sqlite3_open_v2(path.c_str(), &keeper, SQLITE_OPEN_READWRITE, nullptr) == SQLITE_OK) {
      sqlite3_db_config(keeper, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
      // One read opens the log and its index; the connection holds them from then on.
      sqlite3_exec(keeper, "SELECT count(*) FROM sqlite_master", nullptr, nullptr, nullptr);
      keepers_.emplace(path, Keeper{keeper, info.st_dev, info.st_ino});
    } else {
      sqlite3_close_v2(keeper);
    }
  }
  void release(const std::string& path) {
    std::lock_guard lock(mutex_);
    auto found = keepers_.find(path);
    if (found == keepers_.end()) return;
    sqlite3_close_v2(found->second.connection);
    keepers_.erase(found);
  }
  void releaseAll() {
    std::lock_guard lock(mutex_);
    for (auto& [path, keeper] : keepers_) sqlite3_close_v2(keeper.connection);
    keepers_.clear();
  }

 private:
  struct Keeper {
    sqlite3* connection;
    dev_t device;
    ino_t inode;
  };
  std::mutex mutex_;
  std::map<std::string, Keeper> keepers_;
};

// Puts a writable connection in the durability mode. Failures are left to
// the caller's own statements to meet: a damaged file still opens.
void applyDurability(sqlite3* db, const std::string& path) {
  if (processDurability.load() == SqliteDurability::WriteAheadLog) {
    sqlite3_db_config(db, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    if (sqlite3_exec(db, "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL;", nullptr, nullptr, nullptr) ==
        SQLITE_OK) {
      LogKeepers::shared().keep(path);
    }
  } else {
    sqlite3_exec(db, "PRAGMA journal_mode=DELETE; PRAGMA synchronous=FULL;", nullptr, nullptr, nullptr);
  }
}

}  // namespace

std::optional<SqliteDatabase> SqliteDatabase::open(const std::string& path, int flags, Error* error) {
  sqlite3* db = nullptr;
  std::error_code ignored;
  const bool creating = (flags & kOpenCreate) != 0 && !std::filesystem::exists(path, ignored);
  int rc = sqlite3_open_v2(path.c_str(), &db, flags, nullptr);
  if (rc != SQLITE_OK) {
    setSqliteError(error, db, rc, "Cannot open " + path);
    sqlite3_close_v2(db);
    return std::nullopt;
  }
  sqlite3_extended_result_codes(db, 1);
  // A new file is the owner's alone, whatever the umask (the queue's file
  // holds messages); its log and index take the same mode.
  if (creating) ::chmod(path.c_str(), 0600);
  if ((flags & kOpenReadWrite) != 0) applyDurability(db, path);
  return SqliteDatabase(db);
}

void SqliteDatabase::setDurability(SqliteDurability durability) {
  processDurability.store(durability);
  // The rollback journal needs the file to itself.
  if (durability == SqliteDurability::RollbackJournal) LogKeepers::shared().releaseAll();
}

SqliteDurability SqliteDatabase::durability() { return processDurability.load(); }

bool SqliteDatabase::removeFiles(const std::string& path) {
  LogKeepers::shared().release(path);
  bool removed = true;
  for (const char* suffix : {"", "-wal", "-shm", "-journal"}) {
    std::error_code ec;
    std::filesystem::remove(path + suffix, ec);
    if (ec) removed = false;
  }
  return removed;
}

SqliteDatabase::SqliteDatabase(SqliteDatabase&& other) noexcept : db_(std::exchange(other.db_, nullptr)) {}

SqliteDatabase& SqliteDatabase::operator=(SqliteDatabase&& other) noexcept {
  if (this != &other) {
    close();
    db_ = std::exchange(other.db_, nullptr);
  }
  return *this;
}

SqliteDatabase::~SqliteDatabase() { close(); }

void SqliteDatabase::close() {
  if (db_) sqlite3_close_v2(db_);
  db_ = nullptr;
}

bool SqliteDatabase::exec(std::string_view sql, Error* error) {
  if (!db_) {
    setDataError(error, kSqliteErrorDomain, SQLITE_MISUSE, "Database is closed");
    return false;
  }
  int rc = sqlite3_exec(db_, std::string(sql).c_str(), nullptr, nullptr, nullptr);
  if (rc == SQLITE_OK) return true;
  setSqliteError(error, db_, rc);
  return false;
}

std::optional<SqliteStatement> SqliteDatabase::prepare(std::string_view sql, Error* error) {
  if (!db_) {
    setDataError(error, kSqliteErrorDomain, SQLITE_MISUSE, "Database is closed");
    return std::nullopt;
  }
  sqlite3_stmt* stmt = nullptr;
  int rc = sqlite3_prepare_v2(db_, sql.data(), static_cast<int>(sql.size()), &stmt, nullptr);
  if (rc != SQLITE_OK) {
    setSqliteError(error, db_, rc);
    sqlite3_finalize(stmt);
    return std::nullopt;
  }
  if (!stmt) {  // only whitespace or comments
    setDataError(error, kSqliteErrorDomain, SQLITE_MISUSE, "No statement in \"" + std::string(sql) + "\"");
    return std::nullopt;
  }
  return SqliteStatement(db_, stmt);
}

int SqliteDatabase::changes() const { return db_ ? sqlite3_changes(db_) : 0; }

int64_t SqliteDatabase::lastInsertRowId() const { return db_ ? sqlite3_last_insert_rowid(db_) : 0; }

int SqliteDatabase::errorCode() const { return db_ ? sqlite3_extended_errcode(db_) : SQLITE_MISUSE; }

std::string SqliteDatabase::errorMessage() const { return db_ ? sqlite3_errmsg(db_) : "Database is closed"; }

std::optional<std::vector<std::string>> SqliteDatabase::firstColumnTexts(std::string_view sql, Error* error) {
  auto statement = prepare(sql, error);
  if (!statement) return std::nullopt;
  std::vector<std::string> lines;
  for (;;) {
    switch (statement->step(error)) {
      case SqliteStatement::StepResult::Row:
        lines.push_back(statement->columnText(0));
        break;
      case SqliteStatement::StepResult::Done:
        return lines;
      case SqliteStatement::StepResult::Error:
        return std::nullopt;
    }
  }
}

std::optional<std::vector<std::string>> SqliteDatabase::integrityCheck(Error* error) {
  return firstColumnTexts("PRAGMA integrity_check", error);
}

std::optional<std::vector<SqliteColumnInfo>> SqliteDatabase::tableInfo(std::string_view table, Error* error) {
  auto statement = prepare("SELECT cid, name, type, \"notnull\", dflt_value, pk FROM pragma_table_info(?)", error);
  if (!statement || !statement->bindText(1, table, error)) return std::nullopt;
  std::vector<SqliteColumnInfo> columns;
  for (;;) {
    switch (statement->step(error)) {
      case SqliteStatement::StepResult::Row: {
        SqliteColumnInfo info;
        info.cid = static_cast<int>(statement->columnInt64(0));
        info.name = statement->columnText(1);
        info.type = statement->columnText(2);
        info.notNull = statement->columnInt64(3) != 0;
        if (!statement->columnIsNull(4)) info.defaultValue = statement->columnText(4);
        info.primaryKey = static_cast<int>(statement->columnInt64(5));
        columns.push_back(std::move(info));
        break;
      }
      case SqliteStatement::StepResult::Done:
        return columns;
      case SqliteStatement::StepResult::Error:
        return std::nullopt;
    }
  }
}

bool SqliteDatabase::beginTransaction(std::string_view mode, Error* error) {
  return exec(mode.empty() ? std::string("BEGIN") : "BEGIN " + std::string(mode), error);
}

bool SqliteDatabase::commit(Error* error) { return exec("COMMIT", error); }

bool SqliteDatabase::rollback(Error* error) { return exec("ROLLBACK", error); }

}  // namespace quillet::platform
