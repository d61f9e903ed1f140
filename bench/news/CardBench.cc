// The local work of drawing one card, as HomeVC::showNews does it apart from
// the read-count request: the bookmarked ids read from the store, the card
// made from the item, and the story marked read. Alongside: the card alone,
// its date line alone (the date formatters are made on every call) and the
// formatters made or reused, and a swipe through 1,000 stored stories card by card.
#include <benchmark/benchmark.h>

#include <unistd.h>
#include <filesystem>
#include <memory>
#include <string>

#include "bench/SqliteModeScope.h"
#include "news/card/NewsCard.h"
#include "news/store/NewsDatabaseFile.h"
#include "news/store/NewsStore.h"
#include "platform/data/SqliteDatabase.h"
#include "platform/log/Log.h"
#include "platform/text/DateFormatter.h"

namespace quillet::news {
namespace {

using platform::Value;

constexpr int kStories = 1000;
constexpr int kBookmarks = 20;

Value storyItem(int i) {
  const std::string number = std::to_string(i);
  return Value::dictionary({{"added_by_user_id", "12"},
                            {"added_by_user", "Tomas Verhoek"},
                            {"content_manger_name", "Ilse Marwood"},
                            {"created_date", "2016-05-17"},
                            {"id", std::to_string(1000 + i)},
                            {"new_title", "Lakeside town opens its rebuilt library"},
                            {"news_description",
                             "After two years of work the library by the lake reopened on Monday with a reading "
                             "room, a workshop and a garden."},
                            {"news_image_hd", "http://127.0.0.1/img/hd/" + number + ".jpg"},
                            {"news_image_normal", "http://127.0.0.1/img/n/" + number + ".jpg"},
                            {"news_media_type", "Image"},
                            {"news_source_url", "http://127.0.0.1/story/" + number}});
}

// A data root with the packaged file, 1,000 unread Image stories (written in
// one transaction) and 20 of them bookmarked. Made once for the program.
struct StoredStories {
  StoredStories()
      : root(std::filesystem::temp_directory_path() / ("quillet-card-bench-" + std::to_string(::getpid()))),
        fileSystem(std::make_shared<platform::FileSystem>(
            root, platform::FileSystem::Options{NewsDatabaseFile::builtResourceDirectory()})),
        file(fileSystem),
        store(file) {
    platform::Log::setStandardErrorEnabled(false);
    file.copyDatabaseIfNeeded();
    auto db = platform::SqliteDatabase::open(file.getDBPath());
    db->beginTransaction();
    auto statement = db->prepare(
        "insert into news_table (added_by_user_id,added_by_users,content_manger_name,created_date,id,new_title,"
        "news_description,news_image_hd,news_image_normal,news_media_type,news_source_url,status) VALUES "
        "(?,?,?,?,?,?,?,?,?,?,?,?)");
    const char* const keys[] = {
        "added_by_user_id", "added_by_user",    "content_manger_name", "created_date",      "id",
        "new_title",        "news_description", "news_image_hd",       "news_image_normal", "news_media_type",
        "news_source_url"};
    for (int i = 0; i < kStories; ++i) {
      const Value item = storyItem(i);
      for (int column = 0; column < 11; ++column) statement->bindText(column + 1, item[keys[column]].string());
      statement->bindText(12, "NO");
      statement->step();
      statement->reset();
    }
    statement->finalize();
    db->commit();

    Value firstItems = Value::Array{};
    for (int i = 0; i < kBookmarks; ++i) firstItems.append(storyItem(i * (kStories / kBookmarks)));
    for (int i = 0; i < kBookmarks; ++i) store.insertAllRecordToBookmark(firstItems, i);
  }
  ~StoredStories() {
    std::error_code ignored;
    std::filesystem::remove_all(root, ignored);
  }
  // Every story unread again, as before the first swipe.
  void markAllUnread() {
    auto db = platform::SqliteDatabase::open(file.getDBPath());
    db->exec("update news_table set status = 'NO'");
  }
  void markUnread(const std::string& id) {
    auto db = platform::SqliteDatabase::open(file.getDBPath());
    db->exec("update news_table set status = 'NO' where id = '" + id + "'");
  }
  // A stored record as the store reads it back (not a bookmarked one).
  Value oneRecord() {
    Value records;
    store.selectRecordFromDB("Unread", records);
    return records.at(1);
  }

  static StoredStories& shared() {
    static StoredStories stories;
    return stories;
  }

  std::filesystem::path root;
  std::shared_ptr<platform::FileSystem> fileSystem;
  NewsDatabaseFile file;
  NewsStore store;
};

// One card of the feed screen without the request: bookmarked ids, the card, the read mark.
void drawCardLocally(NewsStore& store, const Value& item) {
  store.getBookmarkedID();
  Value bookmarkedIDs = Value::Array{};
  for (const Value& row : store.arrBookmarkedID().arrayItems()) bookmarkedIDs.append(row["id"]);
  const NewsCardContent card = NewsCard::make(item, "", "HD", bookmarkedIDs);
  store.setStrUpdateID(card.storyId);
  store.updateNewsTable();
  benchmark::DoNotOptimize(card.postedBy.data());
}

// Argument 1: the story is unread before every show (put back outside the
// timing), so the read mark really changes the row and the file is written.
// Argument 0: the same story again, already read; the unchanged row costs no write.
void BM_ShowNewsWithoutRequest(benchmark::State& state) {
  StoredStories& stories = StoredStories::shared();
  const Value item = stories.oneRecord();
  const bool unreadFirst = state.range(0) == 1;
  for (auto _ : state) {
    if (unreadFirst) {
      state.PauseTiming();
      stories.markUnread(item["id"].string());
      state.ResumeTiming();
    }
    drawCardLocally(stories.store, item);
  }
}
BENCHMARK(BM_ShowNewsWithoutRequest)->Arg(1)->Arg(0)->ArgName("unread")->Unit(benchmark::kMicrosecond)->UseRealTime();

void BM_NewsCardMake(benchmark::State& state) {
  StoredStories& stories = StoredStories::shared();
  const Value item = stories.oneRecord();
  stories.store.getBookmarkedID();
  Value bookmarkedIDs = Value::Array{};
  for (const Value& row : stories.store.arrBookmarkedID().arrayItems()) bookmarkedIDs.append(row["id"]);
  for (auto _ : state) {
    const NewsCardContent card = NewsCard::make(item, "", "HD", bookmarkedIDs);
    benchmark::DoNotOptimize(card.postedBy.data());
  }
}
BENCHMARK(BM_NewsCardMake)->Unit(benchmark::kMicrosecond);

void BM_NewsCardDateText(benchmark::State& state) {
  const Value date("2016-05-17");
  for (auto _ : state) {
    const std::string text = NewsCard::dateText(date);
    benchmark::DoNotOptimize(text.data());
  }
}
BENCHMARK(BM_NewsCardDateText)->Unit(benchmark::kMicrosecond);

// The parts of the date line: making one device formatter, and using one made before.
void BM_DateFormatterCreate(benchmark::State& state) {
  for (auto _ : state) {
    auto formatter = platform::DateFormatter::createForDevice("MMM yyyy");
    benchmark::DoNotOptimize(formatter.has_value());
  }
}
BENCHMARK(BM_DateFormatterCreate)->Unit(benchmark::kMicrosecond);

void BM_DateFormatterReused(benchmark::State& state) {
  const auto parser = platform::DateFormatter::createForDevice("yyyy-MM-dd");
  const auto day = platform::DateFormatter::createForDevice("dd");
  const auto monthYear = platform::DateFormatter::createForDevice("MMM yyyy");
  if (!parser || !day || !monthYear) return state.SkipWithError("no device formatter");
  for (auto _ : state) {
    const double date = parser->parse("2016-05-17").value_or(0);
    const std::string text = day->format(date) + " " + monthYear->format(date);
    benchmark::DoNotOptimize(text.data());
  }
}
BENCHMARK(BM_DateFormatterReused)->Unit(benchmark::kMicrosecond);

// The unread list read once, then every card of it drawn as above; all marked
// unread again between iterations (outside the timing).
void BM_SwipeThroughStoredStories(benchmark::State& state) {
  bench::SqliteModeScope mode(state);
  StoredStories& stories = StoredStories::shared();
  for (auto _ : state) {
    state.PauseTiming();
    stories.markAllUnread();
    state.ResumeTiming();
    Value arrNews;
    stories.store.selectRecordFromDB("Unread", arrNews);
    if (arrNews.count() != kStories) state.SkipWithError("the unread list is not the stored stories");
    for (const Value& item : arrNews.arrayItems()) drawCardLocally(stories.store, item);
  }
  state.counters["per_card"] =
      benchmark::Counter(kStories, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_SwipeThroughStoredStories)->Arg(0)->Arg(1)->ArgName("wal")->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace quillet::news
