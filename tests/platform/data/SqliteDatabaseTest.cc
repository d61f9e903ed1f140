#include "platform/data/SqliteDatabase.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "support/TempDir.h"

namespace quillet::platform {
namespace {

using Step = SqliteStatement::StepResult;

class SqliteDatabaseTest : public ::testing::Test {
 protected:
  std::string path(const char* name) const { return (dir.path() / name).string(); }
  testing::TempDir dir;
};

TEST_F(SqliteDatabaseTest, PreparedStatementsRoundTripEveryType) {
  auto db = SqliteDatabase::open(path("news.sqlite"));
  ASSERT_TRUE(db);
  ASSERT_TRUE(db->exec("CREATE TABLE t (id INTEGER PRIMARY KEY, n INTEGER, d REAL, s TEXT, b BLOB, z)"));
  auto insert = db->prepare("INSERT INTO t (n, d, s, b, z) VALUES (?, ?, :s, @b, ?5)");
  ASSERT_TRUE(insert);
  EXPECT_EQ(insert->parameterCount(), 5);
  std::vector<uint8_t> blob{0, 1, 2, 255};
  ASSERT_TRUE(insert->bindInt64(1, INT64_MIN));
  ASSERT_TRUE(insert->bindDouble(2, 0.25));
  ASSERT_TRUE(insert->bindText(":s", std::string_view("a\0b", 3)));
  ASSERT_TRUE(insert->bindBlob("@b", blob));
  ASSERT_TRUE(insert->bindNull(5));
  EXPECT_EQ(insert->step(), Step::Done);
  EXPECT_EQ(db->changes(), 1);
  EXPECT_EQ(db->lastInsertRowId(), 1);

  // A reset statement runs again; an empty blob stays a blob.
  ASSERT_TRUE(insert->reset());
  Error error;
  EXPECT_FALSE(insert->bindInt64(6, 1, &error));
  EXPECT_EQ(error.code, 25);  // SQLITE_RANGE
  EXPECT_FALSE(insert->bindText(":missing", "x"));
  ASSERT_TRUE(insert->bindBlob("@b", {}));
  EXPECT_EQ(insert->step(), Step::Done);
  insert->finalize();
  EXPECT_EQ(insert->step(&error), Step::Error);

  auto select = db->prepare("SELECT n, d, s, b, z FROM t ORDER BY id");
  ASSERT_EQ(select->step(), Step::Row);
  EXPECT_EQ(select->columnCount(), 5);
  EXPECT_EQ(select->columnName(2), "s");
  EXPECT_EQ(select->columnType(0), SqliteStatement::ColumnType::Integer);
  EXPECT_EQ(select->columnInt64(0), INT64_MIN);
  EXPECT_EQ(select->columnDouble(1), 0.25);
  EXPECT_EQ(select->columnText(2), std::string("a\0b", 3));
  EXPECT_EQ(select->columnBlob(3), blob);
  EXPECT_TRUE(select->columnIsNull(4));
  ASSERT_EQ(select->step(), Step::Row);
  EXPECT_EQ(select->columnType(3), SqliteStatement::ColumnType::Blob);
  EXPECT_EQ(select->step(), Step::Done);
}

TEST_F(SqliteDatabaseTest, ErrorsCarrySqliteCodeAndMessage) {
  Error error;
  EXPECT_FALSE(SqliteDatabase::open(path("absent.sqlite"), SqliteDatabase::kOpenReadOnly, &error));
  EXPECT_EQ(error.code, 14);  // SQLITE_CANTOPEN
  auto db = SqliteDatabase::open(path("a.sqlite"));
  EXPECT_FALSE(db->prepare("SELEKT 1", &error));
  EXPECT_EQ(error.code, 1);
  EXPECT_NE(error.localizedDescription().find("syntax error"), std::string::npos);
  ASSERT_TRUE(db->exec("CREATE TABLE u (k TEXT UNIQUE)"));
  ASSERT_TRUE(db->exec("INSERT INTO u VALUES ('x')"));
  EXPECT_FALSE(db->exec("INSERT INTO u VALUES ('x')", &error));
  EXPECT_EQ(error.code, 2067);  // SQLITE_CONSTRAINT_UNIQUE
  EXPECT_EQ(db->errorCode(), 2067);

  // Transactions: a rollback forgets, a commit keeps.
  ASSERT_TRUE(db->beginTransaction());
  ASSERT_TRUE(db->exec("INSERT INTO u VALUES ('y')"));
  ASSERT_TRUE(db->rollback());
  ASSERT_TRUE(db->beginTransaction("IMMEDIATE"));
  ASSERT_TRUE(db->exec("INSERT INTO u VALUES ('z')"));
  ASSERT_TRUE(db->commit());
  auto count = db->prepare("SELECT group_concat(k) FROM u");
  ASSERT_EQ(count->step(), Step::Row);
  EXPECT_EQ(count->columnText(0), "x,z");
  EXPECT_FALSE(db->commit());
}

TEST_F(SqliteDatabaseTest, TableInfoDescribesColumns) {
  auto db = SqliteDatabase::open(path("b.sqlite"));
  ASSERT_TRUE(db->exec("CREATE TABLE \"odd\"\"name\" (a INTEGER NOT NULL DEFAULT 7, b TEXT, PRIMARY KEY (b, a))"));
  auto info = db->tableInfo("odd\"name");
  ASSERT_TRUE(info);
  ASSERT_EQ(info->size(), 2u);
  EXPECT_EQ((*info)[0].name, "a");
  EXPECT_EQ((*info)[0].type, "INTEGER");
  EXPECT_TRUE((*info)[0].notNull);
  EXPECT_EQ((*info)[0].defaultValue, "7");
  EXPECT_EQ((*info)[0].primaryKey, 2);
  EXPECT_FALSE((*info)[1].defaultValue);
  EXPECT_EQ((*info)[1].primaryKey, 1);
  EXPECT_TRUE(db->tableInfo("missing")->empty());
}

TEST_F(SqliteDatabaseTest, IntegrityCheckSeesDamage) {
  {
    auto db = SqliteDatabase::open(path("c.sqlite"));
    ASSERT_TRUE(
        db->exec("PRAGMA page_size=4096; CREATE TABLE t (a INTEGER PRIMARY KEY, b TEXT);"
                 "CREATE INDEX tb ON t(b);"
                 "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<2000)"
                 " INSERT INTO t SELECT i, printf('row %08d', i) FROM n;"));
    EXPECT_EQ(db->integrityCheck(), std::vector<std::string>{"ok"});
    ASSERT_TRUE(db->exec("PRAGMA wal_checkpoint(TRUNCATE)"));  // the rows into the file itself
    db->close();
    // Change one stored text behind SQLite's back: table and index disagree.
    std::fstream file(path("c.sqlite"), std::ios::in | std::ios::out | std::ios::binary);
    std::string content((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    size_t at = content.find("row 00001000");
    ASSERT_NE(at, std::string::npos);
    file.seekp(static_cast<std::streamoff>(at));
    file.write("ROW", 3);
  }
  auto damaged = SqliteDatabase::open(path("c.sqlite"));
  Error error;
  auto lines = damaged->integrityCheck(&error);
  ASSERT_TRUE(lines) << error.description();
  EXPECT_NE(*lines, std::vector<std::string>{"ok"});

  { std::ofstream(path("d.sqlite")) << std::string(8192, 'g'); }
  auto garbage = SqliteDatabase::open(path("d.sqlite"));
  EXPECT_FALSE(garbage->integrityCheck(&error));
  EXPECT_EQ(error.code, 26);  // SQLITE_NOTADB
}

TEST_F(SqliteDatabaseTest, MovedFromObjectsAreInert) {
  auto db = SqliteDatabase::open(path("e.sqlite"));
  SqliteDatabase moved = std::move(*db);
  EXPECT_FALSE(db->isOpen());
  EXPECT_FALSE(db->exec("SELECT 1"));
  auto statement = moved.prepare("SELECT 42");
  SqliteStatement other = std::move(*statement);
  EXPECT_TRUE(statement->isFinalized());
  ASSERT_EQ(other.step(), Step::Row);
  EXPECT_EQ(other.columnInt64(0), 42);
  EXPECT_FALSE(moved.prepare("  -- nothing"));
}

// The text of the first column of the first row of `sql`.
std::string firstText(SqliteDatabase& db, const char* sql) {
  auto statement = db.prepare(sql);
  return statement && statement->step() == SqliteStatement::StepResult::Row ? statement->columnText(0) : "";
}

TEST_F(SqliteDatabaseTest, WritableFilesKeepAWriteAheadLogThatOutlivesTheConnection) {
  const std::string file = path("wal.sqlite");
  {
    const mode_t previous = ::umask(0);
    auto db = SqliteDatabase::open(file);
    ::umask(previous);
    EXPECT_EQ(firstText(*db, "PRAGMA journal_mode"), "wal");
    EXPECT_EQ(firstText(*db, "PRAGMA synchronous"), "1");  // NORMAL: no sync per commit
    ASSERT_TRUE(db->exec("CREATE TABLE t (v TEXT); INSERT INTO t VALUES ('kept')"));
  }
  // Closing does not fold the log back into the file (no sync on every close).
  EXPECT_TRUE(std::filesystem::exists(file + "-wal"));
  // The owner's alone, whatever the umask: the queue's file holds messages.
  for (const char* suffix : {"", "-wal"}) {
    struct stat info {};
    ASSERT_EQ(::stat((file + suffix).c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0600u) << suffix;
  }
  auto reader = SqliteDatabase::open(file, SqliteDatabase::kOpenReadOnly);
  EXPECT_EQ(firstText(*reader, "SELECT v FROM t"), "kept");
  reader->close();

  EXPECT_TRUE(SqliteDatabase::removeFiles(file));
  for (const char* suffix : {"", "-wal", "-shm"}) EXPECT_FALSE(std::filesystem::exists(file + suffix)) << suffix;
  auto fresh = SqliteDatabase::open(file);
  EXPECT_EQ(firstText(*fresh, "SELECT count(*) FROM sqlite_master"), "0");
}

TEST_F(SqliteDatabaseTest, TheRollbackJournalCanBeChosenForComparison) {
  const std::string file = path("journal.sqlite");
  SqliteDatabase::setDurability(SqliteDurability::RollbackJournal);
  auto db = SqliteDatabase::open(file);
  SqliteDatabase::setDurability(SqliteDurability::WriteAheadLog);
  EXPECT_EQ(firstText(*db, "PRAGMA journal_mode"), "delete");
  EXPECT_EQ(firstText(*db, "PRAGMA synchronous"), "2");  // FULL
}

}  // namespace
}  // namespace quillet::platform
