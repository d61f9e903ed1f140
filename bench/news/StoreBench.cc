// insertAllRecordToDB of 100 stories, one open, statement and close per
// story as the store does it, against the same rows written through one
// connection in one transaction. The store's figure carries its ratio to
// that baseline, measured in the same run.
#include <benchmark/benchmark.h>

#include <unistd.h>
#include <filesystem>
#include <memory>
#include <string>

#include "bench/SqliteModeScope.h"
#include "news/store/NewsDatabaseFile.h"
#include "news/store/NewsStore.h"
#include "platform/clock/Clock.h"
#include "platform/data/SqliteDatabase.h"
#include "platform/log/Log.h"
#include "platform/value/Format.h"

namespace quillet::news {
namespace {

using platform::Value;

constexpr int kItems = 100;
const char* const kKeys[] = {
    "added_by_user_id", "added_by_user",    "content_manger_name", "created_date",      "id",
    "new_title",        "news_description", "news_image_hd",       "news_image_normal", "news_media_type",
    "news_source_url"};

// A fresh data root with the packaged file copied into Documents.
struct Fixture {
  Fixture()
      : root(std::filesystem::temp_directory_path() / ("quillet-store-bench-" + std::to_string(::getpid()))),
        fileSystem(std::make_shared<platform::FileSystem>(
            root, platform::FileSystem::Options{NewsDatabaseFile::builtResourceDirectory()})),
        file(fileSystem) {
    platform::Log::setStandardErrorEnabled(false);
    file.copyDatabaseIfNeeded();
    for (int i = 0; i < kItems; ++i) {
      items.append(Value::dictionary({{"added_by_user_id", "12"},
                                      {"added_by_user", "Tomas Verhoek"},
                                      {"content_manger_name", Value::null()},
                                      {"created_date", "2016-05-17"},
                                      {"id", std::to_string(1000 + i)},
                                      {"new_title", "Lakeside town opens its rebuilt library"},
                                      {"news_description",
                                       "After two years of work the library by the lake reopened on Monday with a "
                                       "reading room, a workshop and a garden."},
                                      {"news_image_hd", "http://127.0.0.1/img/hd/" + std::to_string(i) + ".jpg"},
                                      {"news_image_normal", "http://127.0.0.1/img/n/" + std::to_string(i) + ".jpg"},
                                      {"news_media_type", "Image"},
                                      {"news_source_url", "http://127.0.0.1/story/" + std::to_string(i)}}));
    }
  }
  ~Fixture() {
    std::error_code ignored;
    std::filesystem::remove_all(root, ignored);
  }
  void clearRows() {
    auto db = platform::SqliteDatabase::open(file.getDBPath());
    db->exec("delete from news_table");
  }

  std::filesystem::path root;
  std::shared_ptr<platform::FileSystem> fileSystem;
  NewsDatabaseFile file;
  Value items = Value::Array{};
};

double baselineSecondsPerList = 0;

// Times the body of each iteration with the monotonic clock; clears the table between iterations.
template <typename Body>
double runTimed(benchmark::State& state, Fixture& fixture, Body body) {
  const auto clock = platform::Clock::system();
  double total = 0;
  for (auto _ : state) {
    const double start = clock->monotonicSeconds();
    body();
    total += clock->monotonicSeconds() - start;
    state.PauseTiming();
    fixture.clearRows();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * kItems);
  return total / static_cast<double>(state.iterations());
}

// Baseline: one connection, one prepared statement, one transaction.
void BM_BaselineOneTransaction(benchmark::State& state) {
  Fixture fixture;
  baselineSecondsPerList = runTimed(state, fixture, [&] {
    auto db = platform::SqliteDatabase::open(fixture.file.getDBPath());
    db->beginTransaction();
    auto statement = db->prepare(
        "insert into news_table (added_by_user_id,added_by_users,content_manger_name,created_date,id,new_title,"
        "news_description,news_image_hd,news_image_normal,news_media_type,news_source_url,status) VALUES "
        "(?,?,?,?,?,?,?,?,?,?,?,?)");
    for (const Value& item : fixture.items.arrayItems()) {
      for (int column = 0; column < 11; ++column) {
        std::string text = platform::format("%@", item[kKeys[column]]);
        statement->bindText(column + 1, text == "<null>" ? std::string() : text);
      }
      statement->bindText(12, "NO");
      if (statement->step() != platform::SqliteStatement::StepResult::Done) state.SkipWithError("insert failed");
      statement->reset();
    }
    statement->finalize();
    db->commit();
  });
}
BENCHMARK(BM_BaselineOneTransaction)->Unit(benchmark::kMillisecond);

void BM_InsertAllRecordToDB(benchmark::State& state) {
  bench::SqliteModeScope mode(state);
  Fixture fixture;
  NewsStore store(fixture.file);
  const double perList = runTimed(state, fixture, [&] { store.insertAllRecordToDB(fixture.items); });
  if (baselineSecondsPerList > 0) state.counters["ratio_to_one_transaction"] = perList / baselineSecondsPerList;
}
BENCHMARK(BM_InsertAllRecordToDB)->Arg(0)->Arg(1)->ArgName("wal")->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace quillet::news
