#pragma once

#include <sqlite3.h>

#include <string>
#include <string_view>

#include "platform/data/DataError.h"

namespace quillet::platform {

// Stores SQLite's failure `rc` with the connection's message (or the code's
// generic text when there is no connection) in `out`, when it is non-null.
inline void setSqliteError(Error* out, sqlite3* db, int rc, std::string_view context = {}) {
  if (!out) return;
  int code = db ? sqlite3_extended_errcode(db) : rc;
  if ((code & 0xff) != (rc & 0xff)) code = rc;  // the connection's last error is another call's
  std::string message = db && code == sqlite3_extended_errcode(db) ? sqlite3_errmsg(db) : sqlite3_errstr(rc);
  if (!context.empty()) message = std::string(context) + ": " + message;
  setDataError(out, kSqliteErrorDomain, code, message);
}

}  // namespace quillet::platform
