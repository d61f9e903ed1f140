#include "backend/news/NewsStore.h"

#include "platform/log/Log.h"

namespace quillet::backend {
namespace {

using platform::Value;

constexpr const char* kSchema = R"sql(
CREATE TABLE IF NOT EXISTS categories (
  id INTEGER PRIMARY KEY, name TEXT NOT NULL, image TEXT NOT NULL);
CREATE TABLE IF NOT EXISTS news (
  id INTEGER PRIMARY KEY,
  category_id INTEGER NOT NULL REFERENCES categories(id),
  new_title TEXT, news_description TEXT, created_date TEXT, content_manger_name TEXT,
  added_by_user_id TEXT, added_by_user TEXT, news_image_hd TEXT, news_image_normal TEXT,
  news_media_type TEXT NOT NULL, news_source_url TEXT,
  featured INTEGER NOT NULL DEFAULT 0, read_count INTEGER NOT NULL DEFAULT 0);
CREATE TABLE IF NOT EXISTS users (
  id INTEGER PRIMARY KEY AUTOINCREMENT, device_id TEXT NOT NULL, device_token TEXT NOT NULL,
  fav_category TEXT NOT NULL, created REAL NOT NULL);
CREATE TABLE IF NOT EXISTS feedback (
  id INTEGER PRIMARY KEY AUTOINCREMENT, email TEXT NOT NULL, feedback TEXT NOT NULL, created REAL NOT NULL);
CREATE TABLE IF NOT EXISTS pages (
  id INTEGER PRIMARY KEY, title TEXT NOT NULL, description TEXT NOT NULL);
CREATE TABLE IF NOT EXISTS requests (
  id INTEGER PRIMARY KEY AUTOINCREMENT, method TEXT NOT NULL, path TEXT NOT NULL,
  query TEXT NOT NULL, time REAL NOT NULL, status INTEGER NOT NULL);
)sql";

// The item keys, in the order of the news table's columns.
constexpr const char* kItemKeys[] = {"id",
                                     "new_title",
                                     "news_description",
                                     "created_date",
                                     "content_manger_name",
                                     "added_by_user_id",
                                     "added_by_user",
                                     "news_image_hd",
                                     "news_image_normal",
                                     "news_media_type",
                                     "news_source_url"};
constexpr const char* kNewsColumns =
    "n.id, n.new_title, n.news_description, n.created_date, n.content_manger_name, n.added_by_user_id, "
    "n.added_by_user, n.news_image_hd, n.news_image_normal, n.news_media_type, n.news_source_url";

Value textOrNull(const platform::SqliteStatement& st, int column) {
  return st.columnIsNull(column) ? Value::null() : Value(st.columnText(column));
}

void bindTextOrNull(platform::SqliteStatement& st, int index, const Value& value) {
  if (value.isString()) {
    st.bindText(index, value.string());
  } else {
    st.bindNull(index);
  }
}

bool fail(platform::Error* error, const std::string& message) {
  platform::Log::write("news server: " + message);
  if (error) *error = platform::Error::withDescription("quillet.backend.news", 1, message);
  return false;
}

}  // namespace

NewsStore::NewsStore(platform::SqliteDatabase db, std::shared_ptr<platform::Clock> clock)
    : db_(std::move(db)), clock_(std::move(clock)) {}

std::unique_ptr<NewsStore> NewsStore::open(const std::filesystem::path& file, std::shared_ptr<platform::Clock> clock,
                                           platform::Error* error) {
  std::error_code ec;
  std::filesystem::create_directories(file.parent_path(), ec);
  auto db = platform::SqliteDatabase::open(
      file.string(), platform::SqliteDatabase::kOpenReadWrite | platform::SqliteDatabase::kOpenCreate, error);
  if (!db) {
    platform::Log::write("news server: cannot open " + file.string());
    return nullptr;
  }
  if (!db->exec(kSchema, error)) {
    platform::Log::write("news server: cannot create tables: " + db->errorMessage());
    return nullptr;
  }
  return std::unique_ptr<NewsStore>(new NewsStore(std::move(*db), std::move(clock)));
}

bool NewsStore::isSeeded() {
  std::lock_guard lock(mutex_);
  auto st = db_.prepare("SELECT COUNT(*) FROM news");
  return st && st->step() == platform::SqliteStatement::StepResult::Row && st->columnInt64(0) > 0;
}

bool NewsStore::seed(const Value& document, platform::Error* error) {
  std::lock_guard lock(mutex_);
  if (!db_.beginTransaction({}, error)) return false;
  if (!seedLocked(document, error)) {
    db_.rollback();
    return false;
  }
  return db_.commit(error);
}

bool NewsStore::seedLocked(const Value& document, platform::Error* error) {
  if (!document["categories"].isArray() || !document["stories"].isArray() || !document["pages"].isArray() ||
      document["stories"].count() == 0) {
    return fail(error, "seed: the document needs \"categories\", \"stories\" and \"pages\" lists");
  }
  auto category = db_.prepare("INSERT INTO categories (id, name, image) VALUES (?, ?, ?)", error);
  auto news = db_.prepare(
      "INSERT INTO news (id, category_id, new_title, news_description, created_date, content_manger_name, "
      "added_by_user_id, added_by_user, news_image_hd, news_image_normal, news_media_type, news_source_url, "
      "featured, read_count) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
      error);
  auto page = db_.prepare("INSERT INTO pages (id, title, description) VALUES (?, ?, ?)", error);
  if (!category || !news || !page) return false;
  using Step = platform::SqliteStatement::StepResult;

  for (const Value& c : document["categories"].arrayItems()) {
    if (!c["id"].isInteger() || !c["name"].isString() || !c["image"].isString()) {
      return fail(error, "seed: malformed category");
    }
    category->reset();
    category->bindInt64(1, c["id"].integerValue());
    category->bindText(2, c["name"].string());
    category->bindText(3, c["image"].string());
    if (category->step(error) != Step::Done) return false;
  }
  for (const Value& s : document["stories"].arrayItems()) {
    if (!s["id"].isInteger() || !s["category_id"].isInteger() || !s["news_media_type"].isString()) {
      return fail(error, "seed: malformed story");
    }
    news->reset();
    news->bindInt64(1, s["id"].integerValue());
    news->bindInt64(2, s["category_id"].integerValue());
    for (int i = 1; i < 11; ++i) bindTextOrNull(*news, i + 2, s[kItemKeys[i]]);
    news->bindInt64(13, s["featured"].boolValue() ? 1 : 0);
    news->bindInt64(14, s["read_count"].integerValue());
    if (news->step(error) != Step::Done) return false;
  }
  for (const Value& p : document["pages"].arrayItems()) {
    if (!p["id"].isInteger() || !p["title"].isString() || !p["description"].isString()) {
      return fail(error, "seed: malformed page");
    }
    page->reset();
    page->bindInt64(1, p["id"].integerValue());
    page->bindText(2, p["title"].string());
    page->bindText(3, p["description"].string());
    if (page->step(error) != Step::Done) return false;
  }
  return true;
}

Value NewsStore::categories() {
  std::lock_guard lock(mutex_);
  Value out = Value::array({});
  auto st = db_.prepare("SELECT id, name, image FROM categories ORDER BY id");
  while (st && st->step() == platform::SqliteStatement::StepResult::Row) {
    out.append(Value::dictionary(
        {{"id", Value(st->columnText(0))}, {"name", Value(st->columnText(1))}, {"image", Value(st->columnText(2))}}));
  }
  return out;
}

bool NewsStore::categoryExists(int64_t id) {
  std::lock_guard lock(mutex_);
  auto st = db_.prepare("SELECT 1 FROM categories WHERE id = ?");
  return st && st->bindInt64(1, id) && st->step() == platform::SqliteStatement::StepResult::Row;
}

Value NewsStore::newsQuery(const std::string& whereAndOrder, const std::vector<int64_t>& arguments) {
  Value out = Value::array({});
  auto st = db_.prepare(std::string("SELECT ") + kNewsColumns + " FROM news n " + whereAndOrder);
  if (!st) {
    platform::Log::write("news server: news query failed: " + db_.errorMessage());
    return out;
  }
  for (size_t i = 0; i < arguments.size(); ++i) st->bindInt64(static_cast<int>(i + 1), arguments[i]);
  while (st->step() == platform::SqliteStatement::StepResult::Row) {
    Value item = Value::dictionary({});
    for (int c = 0; c < 11; ++c) item.set(kItemKeys[c], textOrNull(*st, c));
    out.append(std::move(item));
  }
  return out;
}

namespace {
constexpr const char* kNewestFirst = " ORDER BY substr(n.created_date, 1, 10) DESC, n.id DESC";
}

Value NewsStore::newsInCategory(std::optional<int64_t> categoryId) {
  std::lock_guard lock(mutex_);
  if (!categoryId) return newsQuery(kNewestFirst, {});
  return newsQuery(std::string("WHERE n.category_id = ?") + kNewestFirst, {*categoryId});
}

std::optional<Value> NewsStore::newsForUser(int64_t userId) {
  std::lock_guard lock(mutex_);
  auto st = db_.prepare("SELECT 1 FROM users WHERE id = ?");
  if (!st || !st->bindInt64(1, userId) || st->step() != platform::SqliteStatement::StepResult::Row) {
    return std::nullopt;
  }
  return newsQuery(std::string("JOIN users u ON u.id = ? "
                               "WHERE instr(',' || u.fav_category || ',', ',' || n.category_id || ',') > 0") +
                       kNewestFirst,
                   {userId});
}

Value NewsStore::mostPopularNews(int limit) {
  std::lock_guard lock(mutex_);
  return newsQuery("ORDER BY n.read_count DESC, n.id ASC LIMIT ?", {limit});
}

Value NewsStore::featuredNews() {
  std::lock_guard lock(mutex_);
  return newsQuery(std::string("WHERE n.featured != 0") + kNewestFirst, {});
}

std::optional<Value> NewsStore::story(int64_t id) {
  std::lock_guard lock(mutex_);
  Value found = newsQuery("WHERE n.id = ?", {id});
  if (found.count() == 0) return std::nullopt;
  return found.at(0);
}

std::optional<int64_t> NewsStore::addUser(const std::string& deviceId, const std::string& deviceToken,
                                          const std::string& favCategory) {
  std::lock_guard lock(mutex_);
  platform::Error error;
  // A device registering again keeps its user, with the new token and favourites.
  // Phones without a device id send "(null)": those cannot be told apart, so each is a new user.
  if (!deviceId.empty() && deviceId != "(null)") {
    auto find = db_.prepare("SELECT id FROM users WHERE device_id = ? ORDER BY id LIMIT 1");
    if (find && find->bindText(1, deviceId) && find->step(&error) == platform::SqliteStatement::StepResult::Row) {
      const int64_t userId = find->columnInt64(0);
      auto update = db_.prepare("UPDATE users SET device_token = ?, fav_category = ? WHERE id = ?");
      if (update && update->bindText(1, deviceToken) && update->bindText(2, favCategory) &&
          update->bindInt64(3, userId) && update->step(&error) == platform::SqliteStatement::StepResult::Done) {
        return userId;
      }
      platform::Log::write("news server: addUser failed: " + error.description());
      return std::nullopt;
    }
  }
  auto st = db_.prepare("INSERT INTO users (device_id, device_token, fav_category, created) VALUES (?, ?, ?, ?)");
  if (!st) return std::nullopt;
  st->bindText(1, deviceId);
  st->bindText(2, deviceToken);
  st->bindText(3, favCategory);
  st->bindDouble(4, clock_->wallSeconds());
  if (st->step(&error) != platform::SqliteStatement::StepResult::Done) {
    platform::Log::write("news server: addUser failed: " + error.description());
    return std::nullopt;
  }
  return db_.lastInsertRowId();
}

bool NewsStore::addFeedback(const std::string& email, const std::string& feedback) {
  std::lock_guard lock(mutex_);
  auto st = db_.prepare("INSERT INTO feedback (email, feedback, created) VALUES (?, ?, ?)");
  if (!st) return false;
  st->bindText(1, email);
  st->bindText(2, feedback);
  st->bindDouble(3, clock_->wallSeconds());
  return st->step() == platform::SqliteStatement::StepResult::Done;
}

bool NewsStore::incrementReadCount(int64_t storyId) {
  std::lock_guard lock(mutex_);
  auto st = db_.prepare("UPDATE news SET read_count = read_count + 1 WHERE id = ?");
  return st && st->bindInt64(1, storyId) && st->step() == platform::SqliteStatement::StepResult::Done &&
         db_.changes() == 1;
}

std::optional<int64_t> NewsStore::readCount(int64_t storyId) {
  std::lock_guard lock(mutex_);
  auto st = db_.prepare("SELECT read_count FROM news WHERE id = ?");
  if (!st || !st->bindInt64(1, storyId) || st->step() != platform::SqliteStatement::StepResult::Row) {
    return std::nullopt;
  }
  return st->columnInt64(0);
}

Value NewsStore::feedback() {
  std::lock_guard lock(mutex_);
  Value out = Value::array({});
  auto st = db_.prepare("SELECT email, feedback FROM feedback ORDER BY id");
  while (st && st->step() == platform::SqliteStatement::StepResult::Row) {
    out.append(Value::dictionary({{"email", Value(st->columnText(0))}, {"feedback", Value(st->columnText(1))}}));
  }
  return out;
}

std::optional<Value> NewsStore::page(int64_t id) {
  std::lock_guard lock(mutex_);
  auto st = db_.prepare("SELECT id, title, description FROM pages WHERE id = ?");
  if (!st || !st->bindInt64(1, id) || st->step() != platform::SqliteStatement::StepResult::Row) return std::nullopt;
  return Value::dictionary({{"id", Value(st->columnText(0))},
                            {"title", Value(st->columnText(1))},
                            {"description", Value(st->columnText(2))}});
}

void NewsStore::recordRequest(const NewsRecordedRequest& request) {
  std::lock_guard lock(mutex_);
  auto st = db_.prepare("INSERT INTO requests (method, path, query, time, status) VALUES (?, ?, ?, ?, ?)");
  if (!st) return;
  st->bindText(1, request.method);
  st->bindText(2, request.path);
  st->bindText(3, request.query);
  st->bindDouble(4, clock_->wallSeconds());
  st->bindInt64(5, request.status);
  if (st->step() != platform::SqliteStatement::StepResult::Done) {
    platform::Log::write("news server: cannot record request: " + db_.errorMessage());
  }
}

std::vector<NewsRecordedRequest> NewsStore::recordedRequests() {
  std::lock_guard lock(mutex_);
  std::vector<NewsRecordedRequest> out;
  auto st = db_.prepare("SELECT method, path, query, time, status FROM requests ORDER BY id");
  while (st && st->step() == platform::SqliteStatement::StepResult::Row) {
    out.push_back({st->columnText(0), st->columnText(1), st->columnText(2), st->columnDouble(3),
                   static_cast<int>(st->columnInt64(4))});
  }
  return out;
}

}  // namespace quillet::backend
