#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/data/SqliteStatement.h"
#include "platform/value/Error.h"

struct sqlite3;

namespace quillet::platform {

// One row of PRAGMA table_info.
struct SqliteColumnInfo {
  int cid = 0;
  std::string name;
  std::string type;
  bool notNull = false;
  std::optional<std::string> defaultValue;  // the default's SQL text
  int primaryKey = 0;                       // position in the primary key, 0 if none
};

// How the files are kept on disk. Every file the program opens for writing
// is kept in write-ahead-log mode with normal sync: a commit appends to the
// log without a disk sync of its own, a killed process loses nothing that
// was committed (only a power loss can take the last commits). The platform
// keeps one idle connection to each such file for the life of the process,
// and closing a connection does not fold the log back into the file, so
// opening and closing per operation stays cheap. A file is removed with
// removeFiles(), never by hand: a new file must not meet an old log. The rollback journal with a full sync
// per commit is the older way, kept so that benchmarks can compare the two.
enum class SqliteDurability { WriteAheadLog, RollbackJournal };

// A database connection (RAII over sqlite3*). Movable, not copyable. Not
// thread-safe: one thread at a time (the owner's queue). Statements prepared
// from it should be destroyed before it; the connection is closed with
// sqlite3_close_v2, so a late statement never touches freed memory.
// Every failure gives false / nullopt and, through `error`, SQLite's
// extended result code and message (domain "quillet.platform.sqlite").
class SqliteDatabase {
 public:
  // SQLite's open flags (the SQLITE_OPEN_* values).
  static constexpr int kOpenReadOnly = 0x00000001;
  static constexpr int kOpenReadWrite = 0x00000002;
  static constexpr int kOpenCreate = 0x00000004;
  static constexpr int kOpenFullMutex = 0x00010000;

  // Opens (or creates, with mode 0600) the file; a connection that can write is put in the
  // process's durability mode (the write-ahead log unless set otherwise). A
  // file too damaged to take the mode still opens, so that its owner can
  // check it and handle it as it chooses.
  static std::optional<SqliteDatabase> open(const std::string& path, int flags = kOpenReadWrite | kOpenCreate,
                                            Error* error = nullptr);
  // The mode later opens use, process-wide (benchmarks select the rollback
  // journal to measure the older way). Any thread; set before opening.
  static void setDurability(SqliteDurability durability);
  static SqliteDurability durability();
  // Removes the database file with its write-ahead log and shared-memory
  // index, so that a new file at the same path never meets an old log.
  // True when nothing of it is left.
  static bool removeFiles(const std::string& path);

  SqliteDatabase(SqliteDatabase&& other) noexcept;
  SqliteDatabase& operator=(SqliteDatabase&& other) noexcept;
  SqliteDatabase(const SqliteDatabase&) = delete;
  SqliteDatabase& operator=(const SqliteDatabase&) = delete;
  ~SqliteDatabase();

  void close();
  bool isOpen() const { return db_ != nullptr; }

  // Runs one or more statements that return no rows of interest.
  bool exec(std::string_view sql, Error* error = nullptr);
  std::optional<SqliteStatement> prepare(std::string_view sql, Error* error = nullptr);

  int changes() const;
  int64_t lastInsertRowId() const;
  int errorCode() const;  // extended result code of the last call
  std::string errorMessage() const;

  // The result lines of PRAGMA integrity_check: {"ok"} for a healthy file,
  // the problems found otherwise. A file so damaged that the check itself
  // stops gives nullopt with SQLite's code (SQLITE_CORRUPT, SQLITE_NOTADB).
  std::optional<std::vector<std::string>> integrityCheck(Error* error = nullptr);
  // The columns of `table` (empty when there is no such table).
  std::optional<std::vector<SqliteColumnInfo>> tableInfo(std::string_view table, Error* error = nullptr);

  // "BEGIN" (or "BEGIN IMMEDIATE"/"BEGIN EXCLUSIVE" by `mode`), "COMMIT", "ROLLBACK".
  bool beginTransaction(std::string_view mode = {}, Error* error = nullptr);
  bool commit(Error* error = nullptr);
  bool rollback(Error* error = nullptr);

  sqlite3* handle() const { return db_; }

 private:
  explicit SqliteDatabase(sqlite3* db) : db_(db) {}
  std::optional<std::vector<std::string>> firstColumnTexts(std::string_view sql, Error* error);

  sqlite3* db_ = nullptr;
};

}  // namespace quillet::platform
