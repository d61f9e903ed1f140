#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/value/Error.h"

struct sqlite3;
struct sqlite3_stmt;

namespace quillet::platform {

// A prepared statement (RAII over sqlite3_stmt). Made by
// SqliteDatabase::prepare; it must not outlive its database object's open
// connection (finalize or destroy it first). Movable, not copyable; used on
// the database's thread only. Parameter indexes start at 1, column indexes at 0.
class SqliteStatement {
 public:
  enum class StepResult { Row, Done, Error };
  // Column storage classes, numbered as SQLite numbers them.
  enum class ColumnType { Integer = 1, Float = 2, Text = 3, Blob = 4, Null = 5 };

  SqliteStatement(sqlite3* db, sqlite3_stmt* stmt);
  SqliteStatement(SqliteStatement&& other) noexcept;
  SqliteStatement& operator=(SqliteStatement&& other) noexcept;
  SqliteStatement(const SqliteStatement&) = delete;
  SqliteStatement& operator=(const SqliteStatement&) = delete;
  ~SqliteStatement();

  // Binding: false (and the error) for an index out of range, an unknown
  // name, or a finalized statement. Names include their prefix (":id").
  bool bindNull(int index, Error* error = nullptr);
  bool bindInt64(int index, int64_t value, Error* error = nullptr);
  bool bindDouble(int index, double value, Error* error = nullptr);
  bool bindText(int index, std::string_view value, Error* error = nullptr);
  bool bindBlob(int index, std::span<const uint8_t> value, Error* error = nullptr);
  bool bindNull(std::string_view name, Error* error = nullptr);
  bool bindInt64(std::string_view name, int64_t value, Error* error = nullptr);
  bool bindDouble(std::string_view name, double value, Error* error = nullptr);
  bool bindText(std::string_view name, std::string_view value, Error* error = nullptr);
  bool bindBlob(std::string_view name, std::span<const uint8_t> value, Error* error = nullptr);
  // The index of a named parameter, 0 when there is none.
  int parameterIndex(std::string_view name) const;
  int parameterCount() const;

  // Steps once; on Error the error holds SQLite's code and message.
  StepResult step(Error* error = nullptr);
  // Back to the start; bindings stay. clearBindings() sets them all to null.
  bool reset(Error* error = nullptr);
  void clearBindings();
  // Releases the statement; later calls fail. The destructor does this too.
  void finalize();
  bool isFinalized() const { return stmt_ == nullptr; }

  // Columns of the current row (after step() gave Row).
  int columnCount() const;
  std::string columnName(int index) const;
  ColumnType columnType(int index) const;
  bool columnIsNull(int index) const { return columnType(index) == ColumnType::Null; }
  int64_t columnInt64(int index) const;
  double columnDouble(int index) const;
  std::string columnText(int index) const;
  std::vector<uint8_t> columnBlob(int index) const;

  std::string sql() const;
  sqlite3_stmt* handle() const { return stmt_; }

 private:
  bool ready(Error* error) const;
  bool checkBind(int rc, int index, Error* error);

  sqlite3* db_ = nullptr;  // not owned
  sqlite3_stmt* stmt_ = nullptr;
};

}  // namespace quillet::platform
