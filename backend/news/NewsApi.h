#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "backend/news/NewsStore.h"
#include "platform/value/Value.h"

namespace quillet::backend {

// The query of one API request: its pairs in order as they came, decoded, and
// whether the URL had a "?" at all.
struct NewsQuery {
  std::vector<std::pair<std::string, std::string>> pairs;
  bool present = false;
};

// An API reply before it goes on the wire.
struct NewsReply {
  int httpStatus = 200;
  platform::Value body;  // the JSON envelope
};

// The methods under "/newsapp/api/", answered from the client's side of the
// protocol, strictly: a request the client should not send (unknown method,
// missing, extra, repeated or malformed parameter, a query on a method that
// takes none) gets HTTP 400 or 404 with {"status": false, "message": ...}; a
// well-formed request for something that does not exist (an unknown user,
// category, story or page) gets HTTP 200 with "status" false. Successful
// replies are {"status": true, "result": ...} ("user_id" beside "status" for
// addUser). Stored "{base}" marks in URLs become `base`. Holds the store by
// reference (the owner keeps it alive); thread-safe as the store is.
class NewsApi {
 public:
  explicit NewsApi(NewsStore& store) : store_(store) {}

  NewsReply handle(const std::string& method, const NewsQuery& query, const std::string& base);

  static bool isMethod(const std::string& method);
  // The query of a request target ("/path?a=1&b=%20"): pairs split on "&" and
  // the first "=", percent escapes decoded. nullopt when a pair has no "=" or
  // a bad escape (the client never sends such a query).
  static std::optional<NewsQuery> parseQuery(const std::string& target);

 private:
  NewsReply showNews(const NewsQuery& query);
  NewsReply addUser(const NewsQuery& query);
  NewsReply addFeedback(const NewsQuery& query);
  NewsReply cmsApp(const NewsQuery& query);
  NewsReply setReadCount(const NewsQuery& query);

  NewsStore& store_;
};

}  // namespace quillet::backend
