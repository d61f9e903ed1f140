#include "backend/news/NewsApi.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <set>

#include "platform/text/PercentEscape.h"

namespace quillet::backend {
namespace {

using platform::Value;

constexpr const char* kBaseMark = "{base}";

NewsReply refused(int httpStatus, const std::string& message) {
  return {httpStatus, Value::dictionary({{"status", Value(false)}, {"message", Value(message)}})};
}

NewsReply notFound(const std::string& message) { return refused(200, message); }

NewsReply ok(Value result) {
  return {200, Value::dictionary({{"status", Value(true)}, {"result", std::move(result)}})};
}

// Every name in `required` exactly once, nothing else; else the refusal.
std::optional<NewsReply> checkParameters(const NewsQuery& query, std::initializer_list<const char*> required) {
  if (required.size() == 0) {
    if (query.present) return refused(400, "this method takes no parameters");
    return std::nullopt;
  }
  std::set<std::string> seen;
  for (const auto& pair : query.pairs) {
    const std::string& name = pair.first;
    if (std::find_if(required.begin(), required.end(), [&](const char* r) { return name == r; }) == required.end()) {
      return refused(400, "unexpected parameter \"" + name + "\"");
    }
    if (!seen.insert(name).second) return refused(400, "repeated parameter \"" + name + "\"");
  }
  for (const char* name : required) {
    if (!seen.count(name)) return refused(400, std::string("missing parameter \"") + name + "\"");
  }
  return std::nullopt;
}

const std::string& parameter(const NewsQuery& query, const std::string& name) {
  static const std::string empty;
  for (const auto& [n, v] : query.pairs) {
    if (n == name) return v;
  }
  return empty;
}

// A decimal id of 1 to 18 digits.
std::optional<int64_t> parseId(const std::string& text) {
  if (text.empty() || text.size() > 18 ||
      !std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; })) {
    return std::nullopt;
  }
  return std::stoll(text);
}

// The category ids of "7,3": ids joined by single commas, nothing else.
std::optional<std::vector<int64_t>> parseIdList(const std::string& text) {
  std::vector<int64_t> ids;
  size_t start = 0;
  while (true) {
    const size_t comma = text.find(',', start);
    auto id = parseId(text.substr(start, comma == std::string::npos ? std::string::npos : comma - start));
    if (!id) return std::nullopt;
    ids.push_back(*id);
    if (comma == std::string::npos) return ids;
    start = comma + 1;
  }
}

// A loose address check: something@something.something, no blanks.
bool looksLikeAddress(const std::string& text) {
  const size_t at = text.find('@');
  return at != std::string::npos && at > 0 && text.find('.', at) != std::string::npos && text.back() != '.' &&
         text.find_first_of(" \t\r\n") == std::string::npos && text.find('@', at + 1) == std::string::npos;
}

void replaceBase(Value& value, const std::string& base) {
  if (value.isString()) {
    if (value.string().rfind(kBaseMark, 0) == 0)
      value = Value(base + value.string().substr(std::string(kBaseMark).size()));
  } else if (value.isArray()) {
    for (Value& item : value.arrayItems()) replaceBase(item, base);
  } else if (value.isDictionary()) {
    for (auto& [key, item] : value.dictionaryItems()) replaceBase(item, base);
  }
}

}  // namespace

bool NewsApi::isMethod(const std::string& method) {
  static const std::set<std::string> methods = {"showNews", "getMostPopularNews", "getFeaturedNews", "getAllCategory",
                                                "addUser",  "addFeedback",        "cms_App",         "setReadCount"};
  return methods.count(method) > 0;
}

std::optional<NewsQuery> NewsApi::parseQuery(const std::string& target) {
  NewsQuery query;
  const size_t mark = target.find('?');
  if (mark == std::string::npos) return query;
  query.present = true;
  const std::string text = target.substr(mark + 1);
  if (text.empty()) return query;
  size_t start = 0;
  while (start <= text.size()) {
    size_t end = text.find('&', start);
    if (end == std::string::npos) end = text.size();
    const std::string pair = text.substr(start, end - start);
    const size_t equals = pair.find('=');
    if (equals == std::string::npos) return std::nullopt;
    auto name = platform::PercentEscape::unescape(pair.substr(0, equals));
    auto value = platform::PercentEscape::unescape(pair.substr(equals + 1));
    if (!name || !value) return std::nullopt;
    query.pairs.emplace_back(std::move(*name), std::move(*value));
    start = end + 1;
  }
  return query;
}

NewsReply NewsApi::handle(const std::string& method, const NewsQuery& query, const std::string& base) {
  NewsReply reply;
  if (method == "showNews") {
    reply = showNews(query);
  } else if (method == "getMostPopularNews" || method == "getFeaturedNews" || method == "getAllCategory") {
    if (auto refusal = checkParameters(query, {})) return *refusal;
    reply = ok(method == "getAllCategory"    ? store_.categories()
               : method == "getFeaturedNews" ? store_.featuredNews()
                                             : store_.mostPopularNews());
  } else if (method == "addUser") {
    reply = addUser(query);
  } else if (method == "addFeedback") {
    reply = addFeedback(query);
  } else if (method == "cms_App") {
    reply = cmsApp(query);
  } else if (method == "setReadCount") {
    reply = setReadCount(query);
  } else {
    return refused(404, "no such method \"" + method + "\"");
  }
  replaceBase(reply.body, base);
  return reply;
}

NewsReply NewsApi::showNews(const NewsQuery& query) {
  // The client asks by user ("id") or by category ("category_id"), never both.
  const bool byUser =
      std::any_of(query.pairs.begin(), query.pairs.end(), [](const auto& p) { return p.first == "id"; });
  if (auto refusal = checkParameters(query, {byUser ? "id" : "category_id"})) return *refusal;
  if (byUser) {
    auto userId = parseId(parameter(query, "id"));
    if (!userId) return refused(400, "malformed user id \"" + parameter(query, "id") + "\"");
    auto news = store_.newsForUser(*userId);
    if (!news) return notFound("no such user");
    return ok(std::move(*news));
  }
  const std::string& categoryText = parameter(query, "category_id");
  if (categoryText.empty()) return ok(store_.newsInCategory(std::nullopt));
  auto categoryId = parseId(categoryText);
  if (!categoryId) return refused(400, "malformed category id \"" + categoryText + "\"");
  if (!store_.categoryExists(*categoryId)) return notFound("no such category");
  return ok(store_.newsInCategory(categoryId));
}

NewsReply NewsApi::addUser(const NewsQuery& query) {
  if (auto refusal = checkParameters(query, {"device_id", "device_token", "fav_category"})) return *refusal;
  const std::string& favourites = parameter(query, "fav_category");
  auto ids = parseIdList(favourites);
  if (!ids) return refused(400, "malformed fav_category \"" + favourites + "\"");
  for (int64_t id : *ids) {
    if (!store_.categoryExists(id)) return notFound("no such category " + std::to_string(id));
  }
  auto userId = store_.addUser(parameter(query, "device_id"), parameter(query, "device_token"), favourites);
  if (!userId) return refused(500, "cannot add the user");
  return {200,
          Value::dictionary({{"status", Value(true)}, {"user_id", Value(*userId)}, {"message", Value("User added")}})};
}

NewsReply NewsApi::addFeedback(const NewsQuery& query) {
  if (auto refusal = checkParameters(query, {"email", "feedback"})) return *refusal;
  const std::string& email = parameter(query, "email");
  const std::string& text = parameter(query, "feedback");
  if (!looksLikeAddress(email)) return refused(400, "malformed email \"" + email + "\"");
  if (text.empty()) return refused(400, "empty feedback");
  if (!store_.addFeedback(email, text)) return refused(500, "cannot store the feedback");
  return ok(Value("Feedback received"));
}

NewsReply NewsApi::cmsApp(const NewsQuery& query) {
  if (auto refusal = checkParameters(query, {"id"})) return *refusal;
  auto pageId = parseId(parameter(query, "id"));
  if (!pageId) return refused(400, "malformed page id \"" + parameter(query, "id") + "\"");
  auto page = store_.page(*pageId);
  if (!page) return notFound("no such page");
  return ok(std::move(*page));
}

NewsReply NewsApi::setReadCount(const NewsQuery& query) {
  if (auto refusal = checkParameters(query, {"id"})) return *refusal;
  auto storyId = parseId(parameter(query, "id"));
  if (!storyId) return refused(400, "malformed story id \"" + parameter(query, "id") + "\"");
  if (!store_.incrementReadCount(*storyId)) return notFound("no such story");
  return {200, Value::dictionary({{"status", Value(true)}, {"message", Value("Read count updated")}})};
}

}  // namespace quillet::backend
