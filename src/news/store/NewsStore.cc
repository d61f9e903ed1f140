#include "news/store/NewsStore.h"

#include "news/store/NewsItemAt.h"

#include <array>
#include <optional>
#include <stdexcept>
#include <utility>

#include "platform/data/SqliteDatabase.h"
#include "platform/log/Log.h"
#include "platform/value/Format.h"

namespace quillet::news {

using platform::Log;
using platform::SqliteDatabase;
using platform::SqliteStatement;
using platform::Value;

namespace {

// The columns shared by both tables, in "select *" order: the key an item
// from the server gives the value under, and the key of a record read back.
struct Column {
  const char* sourceKey;
  const char* recordKey;
};
constexpr std::array<Column, 11> kColumns{{
    {"added_by_user_id", "added_by_user_id"},
    {"added_by_user", "added_by_users"},
    {"content_manger_name", "content_manger_name"},
    {"created_date", "created_date"},
    {"id", "id"},
    {"new_title", "new_title"},
    {"news_description", "news_description"},
    {"news_image_hd", "news_image_hd"},
    {"news_image_normal", "news_image_normal"},
    {"news_media_type", "news_media_type"},
    {"news_source_url", "news_source_url"},
}};
constexpr int kStatusParameter = 12;

constexpr const char* kInsertNews =
    "insert into news_table "
    "(added_by_user_id,added_by_users,content_manger_name,created_date,id,new_title,news_description,news_image_hd,"
    "news_image_normal,news_media_type,news_source_url,status) VALUES (?,?,?,?,?,?,?,?,?,?,?,?)";
constexpr const char* kInsertBookmark =
    "insert into bookmark_table "
    "(added_by_user_id,added_by_users,content_manger_name,created_date,id,new_title,news_description,news_image_hd,"
    "news_image_normal,news_media_type,news_source_url) VALUES (?,?,?,?,?,?,?,?,?,?,?)";
constexpr const char* kDeleteBookmark = "Delete from  bookmark_table  where id = '%@'";
constexpr const char* kUpdateStatus = "Update  news_table set status = '%@' where id = '%@'";
constexpr const char* kSelectBookmarks = "select * from bookmark_table";
constexpr const char* kSelectUnread = "select * from news_table where status =  'NO'";
constexpr const char* kSelectBookmarkedIDs = "select id from bookmark_table";

constexpr const char* kInsertedLine = "inserted Succesfully ...... !";
constexpr const char* kUpdatedLine = "updated Succesfully ...... !";

// The text bound for one column: the value formatted with "%@"; a JSON null
// ("<null>") stores the empty string, while a missing key stays "(null)".
std::string columnText(const Value& item, const char* sourceKey) {
  std::string text = platform::format("%@", item[sourceKey]);
  if (text == "<null>") return {};
  return text;
}

// A column read back as "%s" formats it: a NULL column gives "(null)".
Value readColumn(const SqliteStatement& statement, int index) {
  return Value(platform::format("%s", statement.columnIsNull(index) ? Value() : Value(statement.columnText(index))));
}

// Steps a write statement and logs the outcome. A statement that failed to
// prepare fails here in the same way, with the prepare's message.
void stepAndLog(const SqliteDatabase& db, std::optional<SqliteStatement>& statement, const char* successLine) {
  if (statement && statement->step() == SqliteStatement::StepResult::Done) {
    Log::write(successLine);
  } else {
    Log::write(platform::format("Problem is-->>%s  !", db.errorMessage()));
  }
}

// Prepares one insert, binds the item's columns (and the status, when given) and steps it.
void insertItem(SqliteDatabase& db, const char* sql, const Value& item, const std::string* status) {
  Log::write(platform::format("SQL Query:%@", sql));
  std::optional<SqliteStatement> statement = db.prepare(sql);
  if (statement) {
    for (size_t i = 0; i < kColumns.size(); ++i)
      statement->bindText(static_cast<int>(i) + 1, columnText(item, kColumns[i].sourceKey));
    if (status) statement->bindText(kStatusParameter, *status);
  }
  stepAndLog(db, statement, kInsertedLine);
}

}  // namespace

NewsStore::NewsStore(NewsDatabaseFile file) : file_(std::move(file)) {}

void NewsStore::insertAllRecordToDB(const Value& arrNews) {
  strStatus_ = "NO";
  if (!arrNews.isArray()) return;
  for (size_t i = 0; i < arrNews.count(); ++i) {
    std::optional<SqliteDatabase> db = SqliteDatabase::open(file_.getDBPath());
    if (!db) continue;
    insertItem(*db, kInsertNews, arrNews.at(i), &strStatus_);
  }
}

void NewsStore::insertAllRecordToBookmark(const Value& arrNews, int count) {
  arrADDBookmark_ = Value::array({newsItemAt(arrNews, count)});
  for (const Value& item : arrADDBookmark_.arrayItems()) {
    std::optional<SqliteDatabase> db = SqliteDatabase::open(file_.getDBPath());
    if (!db) continue;
    insertItem(*db, kInsertBookmark, item, nullptr);
  }
}

void NewsStore::deleteBookmarked(const Value& arrNews, int count) {
  std::optional<SqliteDatabase> db = SqliteDatabase::open(file_.getDBPath());
  if (!db) return;
  std::optional<SqliteStatement> statement =
      db->prepare(platform::format(kDeleteBookmark, newsItemAt(arrNews, count)["id"]));
  stepAndLog(*db, statement, kUpdatedLine);
}

void NewsStore::updateNewsTable() {
  std::optional<SqliteDatabase> db = SqliteDatabase::open(file_.getDBPath());
  if (!db) return;
  strStatus_ = "YES";
  std::optional<SqliteStatement> statement = db->prepare(platform::format(kUpdateStatus, strStatus_, strUpdateID_));
  stepAndLog(*db, statement, kUpdatedLine);
}

void NewsStore::selectRecordFromDB(std::string_view which, Value& arrNews) {
  arrNews = Value::Array{};
  std::optional<SqliteDatabase> db = SqliteDatabase::open(file_.getDBPath());
  if (!db) return;
  const char* sql = which == "Bookmark" ? kSelectBookmarks : which == "Unread" ? kSelectUnread : nullptr;
  // Any other argument has no statement: it logs "(null)" and reads nothing.
  Log::write(platform::format("SQL Query:%@", sql ? Value(sql) : Value()));
  if (!sql) return;
  std::optional<SqliteStatement> statement = db->prepare(sql);
  if (!statement) return;
  while (statement->step() == SqliteStatement::StepResult::Row) {
    Value record = Value::Dictionary{};
    for (size_t i = 0; i < kColumns.size(); ++i)
      record.set(kColumns[i].recordKey, readColumn(*statement, static_cast<int>(i)));
    Log::write(platform::format("%@ ", record));
    arrNews.append(std::move(record));
  }
}

void NewsStore::getBookmarkedID() {
  arrBookmarkedID_ = Value::Array{};
  std::optional<SqliteDatabase> db = SqliteDatabase::open(file_.getDBPath());
  if (!db) return;
  Log::write(platform::format("SQL Query:%@", kSelectBookmarkedIDs));
  std::optional<SqliteStatement> statement = db->prepare(kSelectBookmarkedIDs);
  if (!statement) return;
  while (statement->step() == SqliteStatement::StepResult::Row) {
    Value record = Value::dictionary({{"id", readColumn(*statement, 0)}});
    Log::write(platform::format("%@", record));
    arrBookmarkedID_.append(std::move(record));
  }
}

}  // namespace quillet::news
