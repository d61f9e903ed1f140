#include "platform/net/HttpMultiLoop.h"

#include <openssl/crypto.h>
#include <pthread.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/net/HttpError.h"

namespace quillet::platform {

namespace {

constexpr int kIdleWaitMs = 60'000;
constexpr int kBusyWaitMs = 1'000;  // a bound so that the clock is read often while requests run

// The TLS library's set-up keeps per-thread state on the thread that ran
// it, which may be a worker that never ends; it is released here, since the
// library makes it again when that thread needs it.
void initialiseTransportOnce() {
  static const bool initialised = [] {
    const bool done = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
    OPENSSL_thread_stop();
    return done;
  }();
  (void)initialised;
}

}  // namespace

HttpMultiLoop::HttpMultiLoop(std::shared_ptr<Clock> clock) : clock_(std::move(clock)) {
  initialiseTransportOnce();
  multi_ = curl_multi_init();
  thread_ = std::thread([this] { run(); });
}

HttpMultiLoop::~HttpMultiLoop() {
  stop();
  curl_multi_cleanup(multi_);
}

void HttpMultiLoop::add(std::unique_ptr<HttpTransfer> transfer) {
  {
    std::lock_guard lock(mutex_);
    if (!stopping_) {
      incoming_.push_back(std::move(transfer));
      curl_multi_wakeup(multi_);
      return;
    }
  }
  transfer->fail(HttpError::kCancelled);
}

void HttpMultiLoop::wake() { curl_multi_wakeup(multi_); }

void HttpMultiLoop::stop() {
  {
    std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  curl_multi_wakeup(multi_);
  if (thread_.joinable()) thread_.join();
}

void HttpMultiLoop::run() {
  pthread_setname_np(pthread_self(), "quillet.http");
  for (;;) {
    std::vector<std::unique_ptr<HttpTransfer>> incoming;
    bool stopping = false;
    {
      std::lock_guard lock(mutex_);
      incoming.swap(incoming_);
      stopping = stopping_;
    }
    for (auto& transfer : incoming) {
      if (stopping) {
        transfer->fail(HttpError::kCancelled);
      } else {
        startTransfer(std::move(transfer));
      }
    }
    if (stopping) break;
    dropCancelled();
    int running = 0;
    curl_multi_perform(multi_, &running);
    collectFinished();
    curl_multi_poll(multi_, nullptr, 0, expireAndMeasureWait(), nullptr);
  }
  for (auto& [easy, transfer] : active_) {
    curl_multi_remove_handle(multi_, easy);
    transfer->fail(HttpError::kCancelled);
  }
  active_.clear();
}

void HttpMultiLoop::startTransfer(std::unique_ptr<HttpTransfer> transfer) {
  if (transfer->delivery().finished() || !transfer->prepare()) return;
  CURL* easy = transfer->handle();
  if (curl_multi_add_handle(multi_, easy) != CURLM_OK) {
    transfer->fail(HttpError::kUnknown);
    return;
  }
  active_.emplace(easy, std::move(transfer));
}

void HttpMultiLoop::dropCancelled() {
  std::erase_if(active_, [this](const auto& entry) {
    if (!entry.second->delivery().finished()) return false;
    curl_multi_remove_handle(multi_, entry.first);
    return true;
  });
}

void HttpMultiLoop::collectFinished() {
  int left = 0;
  while (CURLMsg* message = curl_multi_info_read(multi_, &left)) {
    if (message->msg != CURLMSG_DONE) continue;
    CURL* easy = message->easy_handle;
    const CURLcode result = message->data.result;
    auto found = active_.find(easy);
    if (found == active_.end()) continue;
    curl_multi_remove_handle(multi_, easy);
    // A redirect to follow re-arms the same handle for the next hop.
    if (found->second->hopFinished(result)) {
      if (curl_multi_add_handle(multi_, easy) == CURLM_OK) continue;
      found->second->fail(HttpError::kUnknown);
    }
    active_.erase(found);
  }
}

int HttpMultiLoop::expireAndMeasureWait() {
  const double now = clock_->monotonicSeconds();
  double nearest = std::numeric_limits<double>::infinity();
  std::erase_if(active_, [&](const auto& entry) {
    const double deadline = entry.second->deadline();
    if (deadline > now) {
      nearest = std::min(nearest, deadline);
      return false;
    }
    curl_multi_remove_handle(multi_, entry.first);
    entry.second->fail(HttpError::kTimedOut);
    return true;
  });
  int wait = active_.empty() ? kIdleWaitMs : kBusyWaitMs;
  long transportWait = -1;
  curl_multi_timeout(multi_, &transportWait);
  if (transportWait >= 0) wait = std::min<long>(wait, transportWait);
  if (nearest - now < wait / 1000.0) wait = static_cast<int>(std::ceil((nearest - now) * 1000.0));
  return std::max(wait, 0);
}

}  // namespace quillet::platform
