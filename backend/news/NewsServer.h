#pragma once

#include <memory>
#include <string>

#include "backend/news/NewsMisbehaviour.h"
#include "backend/news/NewsServerOptions.h"
#include "backend/news/NewsStore.h"
#include "platform/value/Error.h"

namespace quillet::backend {

// The stand-in news server. It answers the API under "/newsapp/api/" (see
// NewsApi), serves the pictures of stories and categories under
// "/newsapp/images/", the videos of stories under "/newsapp/videos/<name>.mp4"
// (from the video directory, with byte ranges), a page per story under
// "/newsapp/story/<id>", and takes
// misbehaviour switches at POST "/_control" with a JSON body:
//   {"fault": "none"|"status_false"|"html"|"not_found"|"drop",
//    "delay_ms": 250, "method": "showNews"}   (no "method": every API method)
//   {"clear": true}
// Every request is recorded in the store's "requests" table before the reply
// goes out. The server runs on its own threads between start() and stop();
// the public functions may be called from any thread. The destructor stops it.
class NewsServer {
 public:
  explicit NewsServer(NewsServerOptions options);
  ~NewsServer();
  NewsServer(const NewsServer&) = delete;
  NewsServer& operator=(const NewsServer&) = delete;

  // Opens (and at first start seeds) the data set, binds and starts serving.
  // False with `error` when the data set or the port cannot be had.
  bool start(platform::Error* error = nullptr);
  // Stops serving and waits for the server's threads; replies held back by a
  // delay end at once. Safe to call twice.
  void stop();

  int port() const;             // the bound port, 0 before start
  std::string baseUrl() const;  // "http://127.0.0.1:<port>"
  std::string apiUrl() const;   // baseUrl() + "/newsapp/api/"

  // Misbehaviour switches; `method` empty means every API method.
  void setFault(const std::string& method, NewsFault fault);
  void clearFaults();

  // The data set; null before start. Owned by the server, valid until it goes.
  NewsStore* store() const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace quillet::backend
