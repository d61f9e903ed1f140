// The reliable queue's store on disk: received ids saved and removed per
// second (removal in batches of 100 ids per statement), against a bare
// SQLite insert of the same row in the same run.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "bench/SqliteModeScope.h"
#include "messaging/rmq/MSGRmqManager.h"
#include "platform/data/SqliteDatabase.h"
#include "platform/log/Log.h"

namespace quillet::messaging {
namespace {

std::filesystem::path freshDirectory() {
  char pattern[] = "/tmp/quillet-rmq-bench-XXXXXX";
  return mkdtemp(pattern);
}

void BM_SaveS2dMessage(benchmark::State& state) {
  bench::SqliteModeScope mode(state);
  auto dir = freshDirectory();
  {
    MSGRmqManager manager("rmq2", std::make_shared<platform::FileSystem>(dir));
    int64_t n = 0;
    for (auto _ : state) manager.saveS2dMessageWithRmqId(std::to_string(++n));
    state.SetItemsProcessed(state.iterations());
  }
  std::filesystem::remove_all(dir);
}
BENCHMARK(BM_SaveS2dMessage)->Arg(0)->Arg(1)->ArgName("wal")->Unit(benchmark::kMicrosecond)->UseRealTime();

void BM_RemoveS2dIds(benchmark::State& state) {
  auto dir = freshDirectory();
  {
    MSGRmqManager manager("rmq2", std::make_shared<platform::FileSystem>(dir));
    const int count = static_cast<int>(state.range(0));
    for (auto _ : state) {
      state.PauseTiming();
      std::vector<std::string> ids;
      auto database = platform::SqliteDatabase::open((dir / "Documents" / "rmq2.sqlite").string());
      database->exec("BEGIN");
      for (int i = 0; i < count; ++i) {
        ids.push_back(std::to_string(i));
        database->exec("INSERT INTO s2dRmqIds_1 (rmq_id) VALUES ('" + ids.back() + "')");
      }
      database->exec("COMMIT");
      database->close();
      state.ResumeTiming();
      if (manager.removeS2dIds(ids) != count) state.SkipWithError("not all removed");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
  }
  std::filesystem::remove_all(dir);
}
BENCHMARK(BM_RemoveS2dIds)->Arg(1)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond)->UseRealTime();

void BM_BareSqliteInsert(benchmark::State& state) {
  auto dir = freshDirectory();
  {
    auto database = platform::SqliteDatabase::open((dir / "bare.sqlite").string());
    database->exec("CREATE TABLE t (_id INTEGER PRIMARY KEY, rmq_id TEXT)");
    auto statement = database->prepare("INSERT INTO t (rmq_id) VALUES (?)");
    int64_t n = 0;
    for (auto _ : state) {
      statement->reset();
      statement->bindText(1, std::to_string(++n));
      statement->step();
    }
    state.SetItemsProcessed(state.iterations());
  }
  std::filesystem::remove_all(dir);
}
BENCHMARK(BM_BareSqliteInsert)->Unit(benchmark::kMicrosecond)->UseRealTime();

}  // namespace
}  // namespace quillet::messaging
