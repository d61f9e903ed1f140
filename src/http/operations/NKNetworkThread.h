#pragma once

#include <memory>
#include <thread>

#include "platform/dispatch/DispatchQueue.h"
#include "platform/net/HttpSession.h"
#include "platform/runloop/RunLoop.h"

namespace quillet::http {

// The one network thread of the process, "NetKit": a thread of that name
// running its own run loop for ever. It owns the transport's HTTP session,
// and every connection event of every operation is delivered on it. Made on
// first use and never torn down (nothing is at exit). Thread-safe.
class NKNetworkThread {
 public:
  static constexpr const char* kName = "NetKit";

  static NKNetworkThread& shared();

  // Work posted here runs on the network thread, in order.
  const std::shared_ptr<platform::DispatchQueue>& queue() const { return queue_; }
  platform::HttpSession& session() { return *session_; }
  bool isCurrent() const { return queue_->isCurrent(); }

 private:
  NKNetworkThread();

  std::shared_ptr<platform::RunLoop> loop_;
  std::shared_ptr<platform::DispatchQueue> queue_;
  std::unique_ptr<platform::HttpSession> session_;
  std::thread thread_;
};

}  // namespace quillet::http
