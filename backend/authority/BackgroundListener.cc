#include "backend/authority/BackgroundListener.h"

#include <pthread.h>
#include <signal.h>

#include <atomic>
#include <memory>

namespace quillet::backend {

std::thread listenInBackground(httplib::Server& server, bool* listening) {
  auto ended = std::make_shared<std::atomic<bool>>(false);
  std::thread thread([&server, ended] {
    sigset_t pipe;
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipe, nullptr);
    server.listen_after_bind();
    ended->store(true);
  });
  // stop() is only sure to end the loop once it runs; a loop that could not
  // start ends without ever running.
  while (!server.is_running() && !ended->load()) std::this_thread::yield();
  *listening = server.is_running() || !ended->load();
  return thread;
}

}  // namespace quillet::backend
