#include "backend/news/NewsServer.h"

#include <httplib.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "backend/authority/BackgroundListener.h"
#include "backend/news/ConnectionDropper.h"
#include "backend/news/NewsApi.h"
#include "backend/news/NewsImageMaker.h"
#include "platform/files/AtomicFile.h"
#include "platform/log/Log.h"
#include "platform/value/Json.h"

#ifndef QUILLET_BACKEND_RESOURCES
#define QUILLET_BACKEND_RESOURCES "resources/backend"
#endif
#ifndef QUILLET_BACKEND_VIDEOS
#define QUILLET_BACKEND_VIDEOS "resources/videos"
#endif

namespace quillet::backend {
namespace {

using platform::Value;

constexpr const char* kJsonType = "application/json";

// Set by a handler that dropped its connection, so that the recorder does
// not record the request a second time. Each request runs on one thread.
thread_local bool droppedThisRequest = false;

std::string rawQuery(const httplib::Request& request) {
  const size_t mark = request.target.find('?');
  return mark == std::string::npos ? std::string() : request.target.substr(mark + 1);
}

std::string htmlEscape(const std::string& text) {
  std::string out;
  for (char c : text) {
    switch (c) {
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '&':
        out += "&amp;";
        break;
      case '"':
        out += "&quot;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

}  // namespace

struct NewsServer::Impl {
  NewsServerOptions options;
  httplib::Server http;
  std::thread thread;
  std::unique_ptr<NewsStore> store;
  std::unique_ptr<NewsApi> api;
  NewsMisbehaviour misbehaviour;
  std::atomic<int> port{0};
  bool running = false;

  // Delays wait on this so that stop() ends them at once.
  std::mutex delayMutex;
  std::condition_variable delayWake;
  bool stopping = false;

  std::string baseUrl() const { return "http://" + options.host + ":" + std::to_string(port.load()); }

  bool openStore(platform::Error* error);
  void installRoutes();
  void answerApi(const httplib::Request& request, httplib::Response& response);
  void answerImage(const httplib::Request& request, httplib::Response& response);
  void answerStoryPage(const httplib::Request& request, httplib::Response& response);
  void answerVideo(const httplib::Request& request, httplib::Response& response);
  void answerControl(const httplib::Request& request, httplib::Response& response);
  // Waits `milliseconds` of real time unless the server stops first.
  void delay(int milliseconds);
  void dropConnection(const httplib::Request& request);
};

bool NewsServer::Impl::openStore(platform::Error* error) {
  if (!options.clock) options.clock = platform::Clock::system();
  store = NewsStore::open(options.dataDirectory / "news.sqlite", options.clock, error);
  if (!store) return false;
  if (!store->isSeeded()) {
    const std::filesystem::path resources = options.resourceDirectory.empty()
                                                ? std::filesystem::path(QUILLET_BACKEND_RESOURCES)
                                                : options.resourceDirectory;
    const std::filesystem::path seedFile = resources / "news" / "seed.json";
    auto text = platform::AtomicFile::read(seedFile, error);
    if (!text) {
      platform::Log::write("news server: cannot read " + seedFile.string());
      return false;
    }
    platform::Value document = platform::jsonDecode(*text, error);
    if (document.isNil() || !store->seed(document, error)) {
      platform::Log::write("news server: bad seed file " + seedFile.string());
      return false;
    }
  }
  api = std::make_unique<NewsApi>(*store);
  return true;
}

void NewsServer::Impl::installRoutes() {
  http.Get(R"(/newsapp/api/([^/]*))", [this](const httplib::Request& q, httplib::Response& r) { answerApi(q, r); });
  http.Get(R"(/newsapp/images/(story|category)/(\d{1,9})(-hd|-normal)?\.(png|jpg))",
           [this](const httplib::Request& q, httplib::Response& r) { answerImage(q, r); });
  http.Get(R"(/newsapp/videos/([A-Za-z0-9_-]{1,64})\.mp4)",
           [this](const httplib::Request& q, httplib::Response& r) { answerVideo(q, r); });
  http.Get(R"(/newsapp/story/(\d{1,18}))",
           [this](const httplib::Request& q, httplib::Response& r) { answerStoryPage(q, r); });
  http.Post("/_control", [this](const httplib::Request& q, httplib::Response& r) { answerControl(q, r); });
  // Runs before any reply is written, for every request that gets one.
  http.set_post_routing_handler([this](const httplib::Request& q, httplib::Response& r) {
    if (droppedThisRequest) return;
    store->recordRequest({q.method, q.path, rawQuery(q), 0, r.status});
  });
}

void NewsServer::Impl::answerApi(const httplib::Request& request, httplib::Response& response) {
  droppedThisRequest = false;
  const std::string method = request.matches[1];
  const NewsFault fault = misbehaviour.faultFor(method);
  if (fault.delayMilliseconds > 0) delay(fault.delayMilliseconds);

  NewsReply reply;
  if (auto query = NewsApi::parseQuery(request.target)) {
    reply = api->handle(method, *query, baseUrl());
  } else {
    reply = {400, Value::dictionary({{"status", Value(false)}, {"message", Value("malformed query")}})};
  }

  switch (fault.kind) {
    case NewsFault::Kind::None:
      break;
    case NewsFault::Kind::StatusFalse:
      reply.body.set("status", Value(false));
      break;
    case NewsFault::Kind::HtmlBody:
      response.status = 200;
      response.set_content(
          "<html><head><title>Service Unavailable</title></head>"
          "<body><h1>Service Unavailable</h1></body></html>",
          "text/html");
      return;
    case NewsFault::Kind::NotFound:
      response.status = 404;
      response.set_content("<html><body><h1>Not Found</h1></body></html>", "text/html");
      return;
    case NewsFault::Kind::Drop:
      dropConnection(request);
      return;
  }
  response.status = reply.httpStatus;
  response.set_content(platform::jsonEncode(reply.body), kJsonType);
}

void NewsServer::Impl::answerImage(const httplib::Request& request, httplib::Response& response) {
  const bool story = request.matches[1] == "story";
  const std::string size = request.matches[3];
  const bool jpeg = request.matches[4] == "jpg";
  // Story pictures say their size; category icons say none.
  if (story == size.empty()) {
    response.status = 404;
    return;
  }
  const uint32_t seed = static_cast<uint32_t>(std::stoul(request.matches[2])) + (story ? 0 : 1000);
  const int width = !story ? 48 : size == "-hd" ? 160 : 80;
  const int height = !story ? 48 : size == "-hd" ? 120 : 60;
  std::string bytes = jpeg ? NewsImageMaker::jpeg(seed, width, height) : NewsImageMaker::png(seed, width, height);
  if (bytes.empty()) {
    response.status = 500;
    return;
  }
  response.set_content(std::move(bytes), jpeg ? "image/jpeg" : "image/png");
}

void NewsServer::Impl::answerStoryPage(const httplib::Request& request, httplib::Response& response) {
  auto item = store->story(std::stoll(request.matches[1]));
  if (!item) {
    response.status = 404;
    return;
  }
  const Value& body = (*item)["news_description"];
  response.set_content("<!DOCTYPE html><html><head><meta charset=\"utf-8\"><title>" +
                           htmlEscape((*item)["new_title"].description()) + "</title></head><body><h1>" +
                           htmlEscape((*item)["new_title"].description()) + "</h1><p>" +
                           htmlEscape(body.isString() ? body.string() : std::string()) + "</p></body></html>",
                       "text/html; charset=utf-8");
}

// The whole file goes in the reply; the HTTP library cuts it to the byte
// ranges a request asks for (206), as a video reader seeking over HTTP does.
void NewsServer::Impl::answerVideo(const httplib::Request& request, httplib::Response& response) {
  const std::filesystem::path directory =
      options.videoDirectory.empty() ? std::filesystem::path(QUILLET_BACKEND_VIDEOS) : options.videoDirectory;
  std::string name = request.matches[1];
  name += ".mp4";
  auto bytes = platform::AtomicFile::read(directory / name);
  if (!bytes) {
    response.status = 404;
    return;
  }
  response.set_content(std::move(*bytes), "video/mp4");
}

void NewsServer::Impl::answerControl(const httplib::Request& request, httplib::Response& response) {
  const Value command = platform::jsonDecode(request.body);
  auto refuse = [&](const std::string& message) {
    response.status = 400;
    response.set_content(
        platform::jsonEncode(Value::dictionary({{"status", Value(false)}, {"message", Value(message)}})), kJsonType);
  };
  if (!command.isDictionary()) return refuse("the body must be a JSON object");
  if (command["clear"].boolValue()) {
    misbehaviour.clear();
  } else {
    NewsFault fault;
    const Value& kindName = command["fault"];
    if (!kindName.isNil()) {
      auto kind = kindName.isString() ? NewsFault::kindNamed(kindName.string()) : std::nullopt;
      if (!kind) return refuse("unknown fault");
      fault.kind = *kind;
    }
    if (!command["delay_ms"].isNil()) {
      if (!command["delay_ms"].isInteger() || command["delay_ms"].integerValue() < 0) return refuse("bad delay_ms");
      fault.delayMilliseconds = static_cast<int>(command["delay_ms"].integerValue());
    }
    const Value& method = command["method"];
    if (!method.isNil() && (!method.isString() || !NewsApi::isMethod(method.string()))) {
      return refuse("unknown method");
    }
    misbehaviour.setFault(method.isString() ? method.string() : std::string(), fault);
  }
  response.set_content(platform::jsonEncode(Value::dictionary({{"status", Value(true)}})), kJsonType);
}

void NewsServer::Impl::delay(int milliseconds) {
  std::unique_lock lock(delayMutex);
  delayWake.wait_for(lock, std::chrono::milliseconds(milliseconds), [this] { return stopping; });
}

void NewsServer::Impl::dropConnection(const httplib::Request& request) {
  store->recordRequest({request.method, request.path, rawQuery(request), 0, 0});
  droppedThisRequest = true;
  if (!ConnectionDropper::drop(request.local_port, request.remote_port)) {
    platform::Log::write("news server: cannot find the connection to drop");
  }
}

NewsServer::NewsServer(NewsServerOptions options) : impl_(std::make_unique<Impl>()) {
  impl_->options = std::move(options);
}

NewsServer::~NewsServer() { stop(); }

bool NewsServer::start(platform::Error* error) {
  Impl& impl = *impl_;
  if (impl.running) return true;
  if (!impl.store) {
    if (!impl.openStore(error)) return false;
    impl.installRoutes();
  }

  const NewsServerOptions& options = impl.options;
  // An idle kept-alive connection is closed after a second, so that stop()
  // does not wait out the library's default keep-alive time of five seconds.
  impl.http.set_keep_alive_timeout(1);
  int bound = options.port == 0 ? impl.http.bind_to_any_port(options.host)
                                : (impl.http.bind_to_port(options.host, options.port) ? options.port : -1);
  auto fail = [error](const std::string& message) {
    platform::Log::write(message);
    if (error) *error = platform::Error::withDescription("quillet.backend.news", 2, message);
    return false;
  };
  if (bound <= 0) return fail("news server: cannot listen on " + options.host + ":" + std::to_string(options.port));
  impl.port = bound;
  {
    std::lock_guard lock(impl.delayMutex);
    impl.stopping = false;
  }
  bool listening = false;
  impl.thread = listenInBackground(impl.http, &listening);
  if (!listening) {
    impl.thread.join();
    return fail("news server: cannot serve on port " + std::to_string(bound));
  }
  impl.running = true;
  return true;
}

void NewsServer::stop() {
  Impl& impl = *impl_;
  if (!impl.running) return;
  {
    std::lock_guard lock(impl.delayMutex);
    impl.stopping = true;
  }
  impl.delayWake.notify_all();
  impl.http.stop();
  if (impl.thread.joinable()) impl.thread.join();
  impl.running = false;
}

int NewsServer::port() const { return impl_->port; }
std::string NewsServer::baseUrl() const { return impl_->baseUrl(); }
std::string NewsServer::apiUrl() const { return impl_->baseUrl() + "/newsapp/api/"; }
void NewsServer::setFault(const std::string& method, NewsFault fault) { impl_->misbehaviour.setFault(method, fault); }
void NewsServer::clearFaults() { impl_->misbehaviour.clear(); }
NewsStore* NewsServer::store() const { return impl_->store.get(); }

}  // namespace quillet::backend
