// A later launch, end to end against the news server in this process: from
// "launch" until the feed screen holds the list of its first "showNews"
// reply, on real time. The session's set-up and tear-down stay outside the
// figure. The splash screen's fixed pause before routing is part of the
// launch; BM_SplashPause measures it alone, to be taken off when wanted.
#include <benchmark/benchmark.h>

#include <unistd.h>
#include <chrono>
#include <filesystem>
#include <memory>
#include <sstream>
#include <string>
#include <thread>

#include "backend/news/NewsServer.h"
#include "bench/SqliteModeScope.h"
#include "news/app/AppKeys.h"
#include "news/app/SplashVC.h"
#include "news/driver/PhoneSession.h"
#include "news/home/HomeVC.h"
#include "platform/clock/Clock.h"
#include "platform/log/Log.h"
#include "platform/runloop/RunLoop.h"
#include "platform/value/Format.h"

namespace quillet::news {
namespace {

using platform::Value;

constexpr double kReplyLimitSeconds = 10.0;

// The server, started once for the program, and a user with favourite
// categories so that the feed's "showNews" by user id has stories.
struct LaunchServer {
  LaunchServer()
      : directory(std::filesystem::temp_directory_path() / ("quillet-launch-bench-" + std::to_string(::getpid()))),
        server(options(directory)) {
    platform::Log::setStandardErrorEnabled(false);
    platform::Error error;
    started = server.start(&error);
    if (!started) return;
    std::string favourites;
    for (const Value& category : server.store()->categories().arrayItems()) {
      if (!favourites.empty()) favourites += ",";
      favourites += platform::format("%@", category["id"]);
    }
    if (auto id = server.store()->addUser("bench-device", "bench-token", favourites)) userID = std::to_string(*id);
  }
  ~LaunchServer() {
    server.stop();
    std::error_code ignored;
    std::filesystem::remove_all(directory, ignored);
  }
  static backend::NewsServerOptions options(const std::filesystem::path& directory) {
    std::filesystem::create_directories(directory / "server");
    backend::NewsServerOptions result;
    result.port = 0;
    result.dataDirectory = directory / "server";
    return result;
  }
  static LaunchServer& shared() {
    static LaunchServer launchServer;
    return launchServer;
  }

  std::filesystem::path directory;
  backend::NewsServer server;
  bool started = false;
  std::string userID;
  int roots = 0;
};

bool feedHasArrived(PhoneSession& session) {
  auto home = std::dynamic_pointer_cast<HomeVC>(session.application().window().topScreen());
  return home && home->arrNews().count() > 0;
}

void BM_LaunchToFirstFeedReply(benchmark::State& state) {
  bench::SqliteModeScope mode(state);
  LaunchServer& fixture = LaunchServer::shared();
  if (!fixture.started || fixture.userID.empty()) {
    state.SkipWithError("the news server did not start");
    return;
  }
  const auto clock = platform::Clock::system();
  double launchCallSeconds = 0;  // the "launch" command itself, up to the feed's request on its way
  for (auto _ : state) {
    const std::filesystem::path root = fixture.directory / ("phone-" + std::to_string(fixture.roots++));
    PhoneOptions options;
    options.dataDirectory = root;
    options.apiBase = fixture.server.apiUrl();
    options.network = "wifi";
    options.json = true;
    std::ostringstream out;
    bool arrived = false;
    {
      PhoneSession session(options, out);
      // A later launch of a registered reader: straight to the feed, by user id.
      session.defaults().setInteger(1, kLaunchAmountsKey);
      session.defaults().setObject(Value(fixture.userID), kUserIDKey);

      const double start = clock->monotonicSeconds();
      session.execute("launch");
      launchCallSeconds += clock->monotonicSeconds() - start;
      arrived = session.runLoop().runUntil([&] { return feedHasArrived(session); }, kReplyLimitSeconds);
      state.SetIterationTime(clock->monotonicSeconds() - start);

      // Let the card's picture and the read-count request finish before the session goes.
      session.execute("settle");
    }
    platform::RunLoop::setMain(nullptr);
    std::error_code ignored;
    std::filesystem::remove_all(root, ignored);
    if (!arrived) {
      state.SkipWithError("the feed's list did not arrive");
      break;
    }
  }
  state.counters["launch_command"] = benchmark::Counter(launchCallSeconds, benchmark::Counter::kAvgIterations);
}
BENCHMARK(BM_LaunchToFirstFeedReply)
    ->Arg(0)
    ->Arg(1)
    ->ArgName("wal")
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(10);

// The splash screen's pause alone, as it sleeps it on real time.
void BM_SplashPause(benchmark::State& state) {
  for (auto _ : state) {
    std::this_thread::sleep_for(std::chrono::duration<double>(SplashVC::kHideSleepSeconds));
  }
}
BENCHMARK(BM_SplashPause)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(50);

}  // namespace
}  // namespace quillet::news
