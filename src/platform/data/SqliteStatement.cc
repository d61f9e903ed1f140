#include "platform/data/SqliteStatement.h"

#include <sqlite3.h>

#include <string>
#include <utility>

#include "platform/data/SqliteError.h"

namespace quillet::platform {

SqliteStatement::SqliteStatement(sqlite3* db, sqlite3_stmt* stmt) : db_(db), stmt_(stmt) {}

SqliteStatement::SqliteStatement(SqliteStatement&& other) noexcept
    : db_(std::exchange(other.db_, nullptr)), stmt_(std::exchange(other.stmt_, nullptr)) {}

SqliteStatement& SqliteStatement::operator=(SqliteStatement&& other) noexcept {
  if (this != &other) {
    finalize();
    db_ = std::exchange(other.db_, nullptr);
    stmt_ = std::exchange(other.stmt_, nullptr);
  }
  return *this;
}

SqliteStatement::~SqliteStatement() { finalize(); }

void SqliteStatement::finalize() {
  if (stmt_) sqlite3_finalize(stmt_);
  stmt_ = nullptr;
}

bool SqliteStatement::checkBind(int rc, int index, Error* error) {
  if (rc == SQLITE_OK) return true;
  setSqliteError(error, db_, rc, "Cannot bind parameter " + std::to_string(index));
  return false;
}

bool SqliteStatement::ready(Error* error) const {
  if (stmt_) return true;
  setDataError(error, kSqliteErrorDomain, SQLITE_MISUSE, "Statement is finalized");
  return false;
}

bool SqliteStatement::bindNull(int index, Error* error) {
  if (!ready(error)) return false;
  return checkBind(sqlite3_bind_null(stmt_, index), index, error);
}

bool SqliteStatement::bindInt64(int index, int64_t value, Error* error) {
  if (!ready(error)) return false;
  return checkBind(sqlite3_bind_int64(stmt_, index, value), index, error);
}

bool SqliteStatement::bindDouble(int index, double value, Error* error) {
  if (!ready(error)) return false;
  return checkBind(sqlite3_bind_double(stmt_, index, value), index, error);
}

bool SqliteStatement::bindText(int index, std::string_view value, Error* error) {
  if (!ready(error)) return false;
  return checkBind(sqlite3_bind_text64(stmt_, index, value.data(), value.size(), SQLITE_TRANSIENT, SQLITE_UTF8), index,
                   error);
}

bool SqliteStatement::bindBlob(int index, std::span<const uint8_t> value, Error* error) {
  if (!ready(error)) return false;
  // A non-null pointer so that an empty blob binds as a zero-length blob, not NULL.
  static const uint8_t kEmpty = 0;
  const void* data = value.empty() ? &kEmpty : value.data();
  return checkBind(sqlite3_bind_blob64(stmt_, index, data, value.size(), SQLITE_TRANSIENT), index, error);
}

int SqliteStatement::parameterIndex(std::string_view name) const {
  return stmt_ ? sqlite3_bind_parameter_index(stmt_, std::string(name).c_str()) : 0;
}

int SqliteStatement::parameterCount() const { return stmt_ ? sqlite3_bind_parameter_count(stmt_) : 0; }

namespace {
// Index 0 is never valid, so an unknown name fails with SQLITE_RANGE.
template <typename Bind>
bool bindByName(const SqliteStatement& s, std::string_view name, Bind bind) {
  return bind(s.parameterIndex(name));
}
}  // namespace

bool SqliteStatement::bindNull(std::string_view name, Error* error) {
  return bindByName(*this, name, [&](int i) { return bindNull(i, error); });
}
bool SqliteStatement::bindInt64(std::string_view name, int64_t value, Error* error) {
  return bindByName(*this, name, [&](int i) { return bindInt64(i, value, error); });
}
bool SqliteStatement::bindDouble(std::string_view name, double value, Error* error) {
  return bindByName(*this, name, [&](int i) { return bindDouble(i, value, error); });
}
bool SqliteStatement::bindText(std::string_view name, std::string_view value, Error* error) {
  return bindByName(*this, name, [&](int i) { return bindText(i, value, error); });
}
bool SqliteStatement::bindBlob(std::string_view name, std::span<const uint8_t> value, Error* error) {
  return bindByName(*this, name, [&](int i) { return bindBlob(i, value, error); });
}

SqliteStatement::StepResult SqliteStatement::step(Error* error) {
  if (!ready(error)) return StepResult::Error;
  int rc = sqlite3_step(stmt_);
  if (rc == SQLITE_ROW) return StepResult::Row;
  if (rc == SQLITE_DONE) return StepResult::Done;
  setSqliteError(error, db_, rc);
  return StepResult::Error;
}

bool SqliteStatement::reset(Error* error) {
  if (!ready(error)) return false;
  int rc = sqlite3_reset(stmt_);
  if (rc == SQLITE_OK) return true;
  setSqliteError(error, db_, rc);
  return false;
}

void SqliteStatement::clearBindings() {
  if (stmt_) sqlite3_clear_bindings(stmt_);
}

int SqliteStatement::columnCount() const { return stmt_ ? sqlite3_column_count(stmt_) : 0; }

std::string SqliteStatement::columnName(int index) const {
  const char* name = stmt_ ? sqlite3_column_name(stmt_, index) : nullptr;
  return name ? name : "";
}

SqliteStatement::ColumnType SqliteStatement::columnType(int index) const {
  return stmt_ ? static_cast<ColumnType>(sqlite3_column_type(stmt_, index)) : ColumnType::Null;
}

int64_t SqliteStatement::columnInt64(int index) const { return stmt_ ? sqlite3_column_int64(stmt_, index) : 0; }

double SqliteStatement::columnDouble(int index) const { return stmt_ ? sqlite3_column_double(stmt_, index) : 0; }

std::string SqliteStatement::columnText(int index) const {
  if (!stmt_) return {};
  const auto* text = sqlite3_column_text(stmt_, index);
  int size = sqlite3_column_bytes(stmt_, index);
  return text ? std::string(reinterpret_cast<const char*>(text), static_cast<size_t>(size)) : std::string();
}

std::vector<uint8_t> SqliteStatement::columnBlob(int index) const {
  if (!stmt_) return {};
  const auto* data = static_cast<const uint8_t*>(sqlite3_column_blob(stmt_, index));
  int size = sqlite3_column_bytes(stmt_, index);
  return data ? std::vector<uint8_t>(data, data + size) : std::vector<uint8_t>();
}

std::string SqliteStatement::sql() const {
  const char* text = stmt_ ? sqlite3_sql(stmt_) : nullptr;
  return text ? text : "";
}

}  // namespace quillet::platform
