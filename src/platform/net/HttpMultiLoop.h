#pragma once

#include <curl/curl.h>

#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/clock/Clock.h"
#include "platform/net/HttpTransfer.h"

namespace quillet::platform {

// The thread that moves every transfer of a session: one libcurl multi
// handle, driven by a thread of its own named "quillet.http". Transfers are
// handed over with add() and owned here until they finish; a transfer whose
// delivery has finished (a cancel) is dropped at the next wake-up. Idle
// time-outs are measured on the given clock.
class HttpMultiLoop {
 public:
  explicit HttpMultiLoop(std::shared_ptr<Clock> clock);
  // Stops the thread (see stop()).
  ~HttpMultiLoop();
  HttpMultiLoop(const HttpMultiLoop&) = delete;
  HttpMultiLoop& operator=(const HttpMultiLoop&) = delete;

  // Any thread. After stop() the transfer fails at once with "cancelled".
  void add(std::unique_ptr<HttpTransfer> transfer);
  // Any thread: makes the loop look again at its transfers (after a cancel).
  void wake();
  // Fails every transfer with "cancelled" and joins the thread. Idempotent;
  // never called on the loop's own thread.
  void stop();

 private:
  void run();
  void startTransfer(std::unique_ptr<HttpTransfer> transfer);
  void dropCancelled();
  void collectFinished();
  // Fails what is past its deadline; returns how long to wait, in milliseconds.
  int expireAndMeasureWait();

  std::shared_ptr<Clock> clock_;
  CURLM* multi_;

  std::mutex mutex_;  // guards incoming_ and stopping_
  std::vector<std::unique_ptr<HttpTransfer>> incoming_;
  bool stopping_ = false;

  std::map<CURL*, std::unique_ptr<HttpTransfer>> active_;  // loop thread only
  std::thread thread_;
};

}  // namespace quillet::platform
