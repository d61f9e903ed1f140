#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/clock/Clock.h"
#include "platform/data/SqliteDatabase.h"
#include "platform/value/Error.h"
#include "platform/value/Value.h"

namespace quillet::backend {

// One request as the news server received it.
struct NewsRecordedRequest {
  std::string method;  // the HTTP verb
  std::string path;
  std::string query;  // the raw query text, without "?"
  double time = 0;    // wall seconds
  int status = 0;     // HTTP status sent; 0 when the connection was dropped
};

// The news server's data set in one SQLite file: categories, stories, users,
// feedback, content pages and the record of requests. Stories come back as
// dictionaries with the keys the client reads ("id" as text, absent values as
// JSON null); stored URLs keep the "{base}" mark that the API replaces with
// the server's address. All functions are thread-safe (one lock around the
// connection); failures log one line and give an empty result or false.
class NewsStore {
 public:
  static std::unique_ptr<NewsStore> open(const std::filesystem::path& file, std::shared_ptr<platform::Clock> clock,
                                         platform::Error* error = nullptr);

  // True once stories exist; seeding happens only into an empty store.
  bool isSeeded();
  // Loads a seed document {"categories": [...], "stories": [...], "pages": [...]}
  // in one transaction. False (and nothing stored) on a malformed document.
  bool seed(const platform::Value& document, platform::Error* error = nullptr);

  platform::Value categories();
  bool categoryExists(int64_t id);
  // Stories of one category, or of all when `categoryId` is nullopt; newest first.
  platform::Value newsInCategory(std::optional<int64_t> categoryId);
  // Stories of the user's favourite categories; nullopt when there is no such user.
  std::optional<platform::Value> newsForUser(int64_t userId);
  platform::Value mostPopularNews(int limit = 20);
  platform::Value featuredNews();
  std::optional<platform::Value> story(int64_t id);

  // The new user's id, or nullopt.
  std::optional<int64_t> addUser(const std::string& deviceId, const std::string& deviceToken,
                                 const std::string& favCategory);
  bool addFeedback(const std::string& email, const std::string& feedback);
  // False when there is no such story.
  bool incrementReadCount(int64_t storyId);
  std::optional<int64_t> readCount(int64_t storyId);
  // {"email", "feedback"} dictionaries, oldest first.
  platform::Value feedback();
  // {"id", "title", "description"}; nullopt for an unknown page.
  std::optional<platform::Value> page(int64_t id);

  void recordRequest(const NewsRecordedRequest& request);
  std::vector<NewsRecordedRequest> recordedRequests();

 private:
  NewsStore(platform::SqliteDatabase db, std::shared_ptr<platform::Clock> clock);
  platform::Value newsQuery(const std::string& whereAndOrder, const std::vector<int64_t>& arguments);
  bool seedLocked(const platform::Value& document, platform::Error* error);

  std::mutex mutex_;
  platform::SqliteDatabase db_;
  std::shared_ptr<platform::Clock> clock_;
};

}  // namespace quillet::backend
