#include "news/driver/StoreDump.h"

#include <filesystem>

#include "platform/data/SqliteDatabase.h"

namespace quillet::news {

using platform::Value;

platform::Value dumpNewsStore(const std::string& path, std::string* problem) {
  std::error_code ignored;
  if (!std::filesystem::exists(path, ignored)) {
    *problem = "the news file is not there yet";
    return Value();
  }
  platform::Error error;
  auto db = platform::SqliteDatabase::open(path, platform::SqliteDatabase::kOpenReadWrite, &error);
  if (!db) {
    *problem = error.localizedDescription();
    return Value();
  }
  Value dump = Value::Dictionary{};
  for (const char* table : {"news_table", "bookmark_table"}) {
    auto statement = db->prepare(std::string("SELECT * FROM ") + table + " ORDER BY rowid", &error);
    if (!statement) {
      *problem = error.localizedDescription();
      return Value();
    }
    Value rows = Value::Array{};
    while (statement->step() == platform::SqliteStatement::StepResult::Row) {
      Value row = Value::Dictionary{};
      for (int i = 0; i < statement->columnCount(); ++i) {
        row.set(statement->columnName(i), statement->columnIsNull(i) ? Value::null() : Value(statement->columnText(i)));
      }
      rows.append(std::move(row));
    }
    dump.set(table, std::move(rows));
  }
  return dump;
}

}  // namespace quillet::news
