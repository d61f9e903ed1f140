#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "platform/dispatch/DispatchQueue.h"
#include "platform/net/HttpCallbacks.h"

namespace quillet::platform {

// Hands the events of one request to the caller's queue, in order, and
// finishes it exactly once: the first complete() wins, whichever thread
// makes it (the session's thread on an answer, any thread on cancel), and
// every later event is dropped. Thread-safe.
//
// In streaming form each event is posted as it comes; in whole form the
// answer is gathered here (off the caller's queue) and posted once at the end.
class HttpDelivery {
 public:
  HttpDelivery(std::shared_ptr<DispatchQueue> queue, HttpStreamCallbacks callbacks);
  HttpDelivery(std::shared_ptr<DispatchQueue> queue, HttpCompletion completion);
  HttpDelivery(const HttpDelivery&) = delete;
  HttpDelivery& operator=(const HttpDelivery&) = delete;

  // Each returns false when the request has already finished.
  bool response(const HttpResponse& response);
  bool data(const uint8_t* bytes, size_t size);
  // True for the one call that finishes the request.
  bool complete(std::optional<Error> error);
  bool finished() const;

 private:
  std::shared_ptr<DispatchQueue> queue_;
  mutable std::mutex mutex_;  // orders the posts of this request and guards what follows
  bool finished_ = false;
  std::shared_ptr<const HttpStreamCallbacks> callbacks_;  // streaming form
  HttpCompletion completion_;                             // whole form
  std::optional<HttpResponse> gathered_;                  // whole form
};

}  // namespace quillet::platform
