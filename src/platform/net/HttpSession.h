#pragma once

#include <memory>

#include "platform/dispatch/DispatchQueue.h"
#include "platform/net/HttpCallbacks.h"
#include "platform/net/HttpRequest.h"
#include "platform/net/HttpSessionOptions.h"
#include "platform/net/HttpTask.h"

namespace quillet::platform {

class HttpMultiLoop;

// An HTTP client in the manner of the phone's URL session: requests run
// side by side on one thread of the session's own ("quillet.http"), sharing
// connections; each can be cancelled through its task, and each delivers
// its outcome exactly once on the queue the caller names. TLS peers are
// verified (chain and host name) against the system's store or options.caFile.
//
// start, startStreaming and invalidateAndCancel may be called from any
// thread. The destructor cancels what is in flight (those completions come
// with "cancelled") and joins the thread; it must not run on a callback
// that the session's own thread makes (a redirect hook).
class HttpSession {
 public:
  explicit HttpSession(HttpSessionOptions options = {});
  ~HttpSession();
  HttpSession(const HttpSession&) = delete;
  HttpSession& operator=(const HttpSession&) = delete;

  // Sends `request`; `completion` gets the whole answer on `queue` (null =
  // the global concurrent queue). The request is copied.
  std::shared_ptr<HttpTask> start(HttpRequest request, std::shared_ptr<DispatchQueue> queue, HttpCompletion completion);
  // Sends `request`; the answer arrives piece by piece through `callbacks` on `queue`.
  std::shared_ptr<HttpTask> startStreaming(HttpRequest request, std::shared_ptr<DispatchQueue> queue,
                                           HttpStreamCallbacks callbacks);

  // Cancels every request in flight; later requests fail at once with "cancelled".
  void invalidateAndCancel();

  const HttpSessionOptions& options() const { return options_; }

 private:
  std::shared_ptr<HttpTask> launch(HttpRequest request, std::shared_ptr<HttpDelivery> delivery);

  HttpSessionOptions options_;
  std::shared_ptr<HttpMultiLoop> loop_;
};

}  // namespace quillet::platform
