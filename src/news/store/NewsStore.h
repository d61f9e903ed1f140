#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "news/store/NewsDatabaseFile.h"
#include "platform/value/Value.h"

namespace quillet::news {

// The local news store: `news_table` (downloaded stories and their read
// marks) and `bookmark_table` (saved stories) in "News.sqlite". These are the
// store operations of `HomeVC`, which owns the list `arrNews` and the index
// `count` and passes them in; the fields that serve only the store live here.
//
// Every operation opens the database, does its work and closes it; no
// connection stays open. Failures are logged ("Problem is-->>%s  !") and never
// reported further. Items are dictionaries with the news API's keys; records
// read back carry "added_by_users" in place of "added_by_user".
//
// Main thread only. An operation on "the current item" requires `count` to
// index `arrNews`; otherwise it throws std::out_of_range, the out-of-range
// read that ends the program.
class NewsStore {
 public:
  explicit NewsStore(NewsDatabaseFile file);

  // Inserts every item of `arrNews` into `news_table` as unread, one open,
  // statement and close per item, with no transaction around the list.
  void insertAllRecordToDB(const platform::Value& arrNews);
  // Inserts the item at `count` into `bookmark_table`.
  void insertAllRecordToBookmark(const platform::Value& arrNews, int count);
  // Deletes every `bookmark_table` row with the "id" of the item at `count`.
  void deleteBookmarked(const platform::Value& arrNews, int count);
  // Marks the story `strUpdateID` read (status "YES").
  void updateNewsTable();
  // Makes `arrNews` a new list of the records of `bookmark_table` ("Bookmark")
  // or of the unread rows of `news_table` ("Unread"), in table order. It stays
  // empty when the file cannot be opened or the argument is another text.
  void selectRecordFromDB(std::string_view which, platform::Value& arrNews);
  // Makes `arrBookmarkedID` a new list of {"id": text}, one per bookmark row.
  void getBookmarkedID();

  // Text of the mark last written: "NO" after an insert, "YES" after an update.
  const std::string& strStatus() const { return strStatus_; }
  // Id of the story that updateNewsTable marks; put into the statement unescaped.
  const std::string& strUpdateID() const { return strUpdateID_; }
  void setStrUpdateID(std::string id) { strUpdateID_ = std::move(id); }
  // Array of {"id": text}, filled by getBookmarkedID.
  const platform::Value& arrBookmarkedID() const { return arrBookmarkedID_; }
  // The item of the last bookmarking, as a one-item list; kept, not used further.
  const platform::Value& arrADDBookmark() const { return arrADDBookmark_; }

 private:
  NewsDatabaseFile file_;
  std::string strStatus_;
  std::string strUpdateID_;
  platform::Value arrBookmarkedID_ = platform::Value::Array{};
  platform::Value arrADDBookmark_ = platform::Value::Array{};
};

}  // namespace quillet::news
