#pragma once

#include <benchmark/benchmark.h>

#include "platform/data/SqliteDatabase.h"

namespace quillet::bench {

// Selects how the SQLite files are kept for one benchmark run, from the
// benchmark's argument `index` (named "wal"): 1 the write-ahead log with
// normal sync, the program's mode; 0 the rollback journal with a full sync
// per commit, the older mode. Both run in one process so that their figures
// stand side by side. The program's mode is restored at the end.
class SqliteModeScope {
 public:
  explicit SqliteModeScope(const benchmark::State& state, int index = 0) {
    platform::SqliteDatabase::setDurability(state.range(index) ? platform::SqliteDurability::WriteAheadLog
                                                               : platform::SqliteDurability::RollbackJournal);
  }
  ~SqliteModeScope() { platform::SqliteDatabase::setDurability(platform::SqliteDurability::WriteAheadLog); }
  SqliteModeScope(const SqliteModeScope&) = delete;
  SqliteModeScope& operator=(const SqliteModeScope&) = delete;
};

}  // namespace quillet::bench
