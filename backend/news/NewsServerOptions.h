#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "platform/clock/Clock.h"

namespace quillet::backend {

// How a NewsServer is set up.
struct NewsServerOptions {
  std::string host = "127.0.0.1";
  int port = 0;                             // 0: an ephemeral port, see NewsServer::port()
  std::filesystem::path dataDirectory;      // holds "news.sqlite"
  std::filesystem::path resourceDirectory;  // holds "news/seed.json"; empty: the packaged resources
  std::filesystem::path videoDirectory;     // holds "<name>.mp4"; empty: the videos the build made
  std::shared_ptr<platform::Clock> clock;   // times of requests and records; null: the system clock
};

}  // namespace quillet::backend
