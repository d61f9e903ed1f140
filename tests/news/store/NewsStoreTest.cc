// The store against a real "News.sqlite" copied from the packaged file.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "news/store/NewsDatabaseFile.h"
#include "news/store/NewsStore.h"
#include "platform/data/SqliteDatabase.h"
#include "support/KilledWriter.h"
#include "support/LogCapture.h"
#include "support/TempDir.h"

namespace quillet::news {
namespace {

using platform::Value;

class NewsStoreTest : public ::testing::Test {
 protected:
  NewsStoreTest()
      : fileSystem_(std::make_shared<platform::FileSystem>(
            dir_.path(), platform::FileSystem::Options{NewsDatabaseFile::builtResourceDirectory()})),
        file_(fileSystem_),
        store_(file_) {}

  std::string dbPath() const { return (fileSystem_->documentsDirectory() / "News.sqlite").string(); }

  // Every row of `sql`, each column as text ("NULL" for a NULL column).
  std::vector<std::vector<std::string>> rows(const std::string& sql) {
    auto db = platform::SqliteDatabase::open(dbPath());
    std::vector<std::vector<std::string>> out;
    auto statement = db->prepare(sql);
    while (statement && statement->step() == platform::SqliteStatement::StepResult::Row) {
      out.emplace_back();
      for (int i = 0; i < statement->columnCount(); ++i)
        out.back().push_back(statement->columnIsNull(i) ? "NULL" : statement->columnText(i));
    }
    return out;
  }

  static Value item(Value id, const std::string& title) {
    return Value::dictionary({{"added_by_user_id", "3"},
                              {"added_by_user", "Mira Holt"},
                              {"content_manger_name", Value::null()},
                              {"created_date", "2016-03-04"},
                              {"id", id},
                              {"new_title", title},
                              {"news_description", "The valley fair opens on Friday."},
                              {"news_image_normal", "http://127.0.0.1/n.jpg"},
                              {"news_media_type", "Image"},
                              {"news_source_url", "http://127.0.0.1/s/1"}});  // no "news_image_hd"
  }

  testing::LogCapture log_;
  testing::TempDir dir_;
  std::shared_ptr<platform::FileSystem> fileSystem_;
  NewsDatabaseFile file_;
  NewsStore store_;
};

TEST_F(NewsStoreTest, PackagedFileHasBothTablesWithIdKeyOnlyInNewsTable) {
  file_.copyDatabaseIfNeeded();
  EXPECT_TRUE(log_.contains("dbpath : " + fileSystem_->documentsDirectory().string()));
  auto db = platform::SqliteDatabase::open(dbPath());
  auto news = db->tableInfo("news_table");
  auto bookmarks = db->tableInfo("bookmark_table");
  ASSERT_EQ(news->size(), 12u);
  ASSERT_EQ(bookmarks->size(), 11u);
  EXPECT_EQ((*news)[1].name, "added_by_users");
  EXPECT_EQ((*news)[4].name, "id");
  EXPECT_EQ((*news)[4].primaryKey, 1);
  EXPECT_EQ((*news)[11].name, "status");
  for (const auto& column : *bookmarks) EXPECT_EQ(column.primaryKey, 0) << column.name;

  // An existing file is never replaced.
  db->exec("insert into bookmark_table (id) values ('kept')");
  db.reset();
  file_.copyDatabaseIfNeeded();
  EXPECT_EQ(rows("select id from bookmark_table").size(), 1u);
}

TEST_F(NewsStoreTest, InsertBindsNullAsEmptyAndMissingAsNullTextThenSelectReadsBack) {
  file_.copyDatabaseIfNeeded();
  store_.insertAllRecordToDB(Value::array({item(7, "Fair opens"), item("8", "Bridge vote")}));
  EXPECT_EQ(store_.strStatus(), "NO");
  EXPECT_TRUE(log_.contains("SQL Query:insert into news_table (added_by_user_id,added_by_users,"));
  EXPECT_TRUE(log_.contains("inserted Succesfully ...... !"));
  auto stored = rows("select content_manger_name, news_image_hd, id, added_by_users, status from news_table");
  ASSERT_EQ(stored.size(), 2u);
  EXPECT_EQ(stored[0], (std::vector<std::string>{"", "(null)", "7", "Mira Holt", "NO"}));

  Value arrNews;
  store_.selectRecordFromDB("Unread", arrNews);
  ASSERT_EQ(arrNews.count(), 2u);
  const Value& record = arrNews.at(1);
  EXPECT_EQ(record.count(), 11u);  // no status
  EXPECT_EQ(record["added_by_users"], Value("Mira Holt"));
  EXPECT_TRUE(record["added_by_user"].isNil());
  EXPECT_EQ(record["id"], Value("8"));
  EXPECT_EQ(record["content_manger_name"], Value(""));

  // A NULL column comes back as "(null)"; any other argument gives an empty list.
  rows("insert into news_table (id, status) values ('9', 'NO')");
  store_.selectRecordFromDB("Unread", arrNews);
  EXPECT_EQ(arrNews.at(2)["new_title"], Value("(null)"));
  store_.selectRecordFromDB("Read", arrNews);
  EXPECT_EQ(arrNews.count(), 0u);
  EXPECT_TRUE(arrNews.isArray());
  EXPECT_TRUE(log_.contains("SQL Query:(null)"));
}

TEST_F(NewsStoreTest, FirstCardIsMarkedBeforeItsRowExistsAndARepeatedDownloadKeepsTheMark) {
  file_.copyDatabaseIfNeeded();
  const Value list = Value::array({item("1", "A"), item("2", "B")});
  store_.setStrUpdateID("1");
  store_.updateNewsTable();  // showNews runs before the insert: no row yet, still a success
  EXPECT_EQ(store_.strStatus(), "YES");
  EXPECT_TRUE(log_.contains("updated Succesfully ...... !"));
  store_.insertAllRecordToDB(list);
  EXPECT_EQ(rows("select status from news_table where id = '1'")[0][0], "NO");

  store_.setStrUpdateID("2");
  store_.updateNewsTable();
  log_.clear();
  store_.insertAllRecordToDB(list);
  EXPECT_TRUE(log_.contains("Problem is-->>UNIQUE constraint failed: news_table.id  !"));
  EXPECT_EQ(rows("select id, status from news_table").size(), 2u);
  EXPECT_EQ(rows("select status from news_table where id = '2'")[0][0], "YES");
  Value arrNews;
  store_.selectRecordFromDB("Unread", arrNews);
  ASSERT_EQ(arrNews.count(), 1u);
  EXPECT_EQ(arrNews.at(0)["id"], Value("1"));

  // An id with a quote breaks the statement; the failure is only logged.
  log_.clear();
  store_.setStrUpdateID("it's");
  store_.updateNewsTable();
  EXPECT_TRUE(log_.contains("Problem is-->>"));
  EXPECT_TRUE(log_.contains("syntax error"));
}

TEST_F(NewsStoreTest, BookmarksRepeatAndOneDeleteRemovesEveryRowWithTheId) {
  file_.copyDatabaseIfNeeded();
  const Value list = Value::array({item("5", "Harbour"), item("6", "Rain")});
  store_.insertAllRecordToBookmark(list, 0);
  EXPECT_EQ(store_.arrADDBookmark().count(), 1u);

  // The same story bookmarked again from the stored list has no "added_by_user".
  Value stored;
  store_.selectRecordFromDB("Bookmark", stored);
  store_.insertAllRecordToBookmark(stored, 0);
  store_.insertAllRecordToBookmark(list, 1);
  EXPECT_EQ(rows("select added_by_users from bookmark_table where id = '5'"),
            (std::vector<std::vector<std::string>>{{"Mira Holt"}, {"(null)"}}));

  store_.getBookmarkedID();
  EXPECT_EQ(store_.arrBookmarkedID(), Value::array({Value::dictionary({{"id", "5"}}), Value::dictionary({{"id", "5"}}),
                                                    Value::dictionary({{"id", "6"}})}));
  store_.deleteBookmarked(list, 0);
  EXPECT_TRUE(log_.contains("updated Succesfully ...... !"));
  store_.getBookmarkedID();
  EXPECT_EQ(store_.arrBookmarkedID(), Value::array({Value::dictionary({{"id", "6"}})}));

  // The current item must exist: the read out of range ends the program.
  EXPECT_THROW(store_.insertAllRecordToBookmark(Value::array({}), 0), std::out_of_range);
  EXPECT_THROW(store_.deleteBookmarked(list, -1), std::out_of_range);
}

TEST_F(NewsStoreTest, AFileWithNoTablesLogsEachFailureAndGivesEmptyLists) {
  // No copy: opening creates an empty file.
  store_.insertAllRecordToDB(Value::array({item("1", "A")}));
  EXPECT_TRUE(log_.contains("Problem is-->>no such table: news_table  !"));
  store_.insertAllRecordToBookmark(Value::array({item("1", "A")}), 0);
  EXPECT_TRUE(log_.contains("Problem is-->>no such table: bookmark_table  !"));
  store_.setStrUpdateID("1");
  store_.updateNewsTable();
  store_.deleteBookmarked(Value::array({item("1", "A")}), 0);
  Value arrNews = Value::array({item("1", "A")});
  store_.selectRecordFromDB("Bookmark", arrNews);
  EXPECT_EQ(arrNews.count(), 0u);
  store_.getBookmarkedID();
  EXPECT_EQ(store_.arrBookmarkedID().count(), 0u);

  // A file that is no database at all fails the same way.
  std::filesystem::remove(dbPath());
  std::ofstream(dbPath()) << "not a database, only some words that fill the header space of the file";
  log_.clear();
  store_.insertAllRecordToDB(Value::array({item("1", "A")}));
  EXPECT_TRUE(log_.contains("Problem is-->>file is not a database  !"));
}

TEST_F(NewsStoreTest, AFileThatCannotBeOpenedLogsNothingAndLeavesTheMarkUnchanged) {
  std::filesystem::create_directories(dbPath());  // a directory where the file should be
  store_.insertAllRecordToDB(Value::array({item("1", "A")}));
  EXPECT_EQ(store_.strStatus(), "NO");
  store_.updateNewsTable();
  EXPECT_EQ(store_.strStatus(), "NO");  // set to "YES" only after a successful open
  Value arrNews = Value::array({item("1", "A")});
  store_.selectRecordFromDB("Unread", arrNews);
  EXPECT_EQ(arrNews.count(), 0u);
  EXPECT_FALSE(log_.contains("Problem is"));
  EXPECT_FALSE(log_.contains("SQL Query"));
}

TEST_F(NewsStoreTest, AKilledProcessLosesNoStoredStoryOrBookmark) {
  file_.copyDatabaseIfNeeded();
  const int stored = testing::killWriterAfter(50, [&](int i) {
    const Value story = item(Value(std::to_string(i)), "Story " + std::to_string(i));
    store_.insertAllRecordToDB(Value::array({story}));
    store_.insertAllRecordToBookmark(Value::array({story}), 0);
  });
  EXPECT_EQ(rows("PRAGMA integrity_check"), (std::vector<std::vector<std::string>>{{"ok"}}));
  const auto stories = rows("SELECT id FROM news_table ORDER BY rowid");
  const auto bookmarks = rows("SELECT id FROM bookmark_table ORDER BY rowid");
  ASSERT_GE(stories.size(), static_cast<size_t>(stored));
  ASSERT_GE(bookmarks.size(), static_cast<size_t>(stored));
  for (int i = 0; i < stored; ++i) {
    EXPECT_EQ(stories[i][0], std::to_string(i));
    EXPECT_EQ(bookmarks[i][0], std::to_string(i));
  }
}

TEST_F(NewsStoreTest, ThePackagedFileIsMadeInWriteAheadLogMode) {
  std::ifstream packaged(NewsDatabaseFile::builtResourceDirectory() / "News.sqlite", std::ios::binary);
  char header[20] = {};
  ASSERT_TRUE(packaged.read(header, sizeof header));
  EXPECT_EQ(header[18], 2);  // file format: write version 2 is the write-ahead log
  EXPECT_EQ(header[19], 2);
}

}  // namespace
}  // namespace quillet::news
