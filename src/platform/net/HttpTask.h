#pragma once

#include <memory>
#include <string>

#include "platform/net/HttpDelivery.h"

namespace quillet::platform {

class HttpMultiLoop;

// The handle of one started request. Holding it does not keep the request
// or the session alive; dropping it does not cancel. Thread-safe.
class HttpTask {
 public:
  HttpTask(std::shared_ptr<HttpDelivery> delivery, std::weak_ptr<HttpMultiLoop> loop, std::string url);

  // When the request has not finished yet, its completion is delivered now
  // (on its queue) with the error "cancelled" (-999) and the transfer stops;
  // otherwise nothing happens. Any thread, any number of times.
  void cancel();
  // True once the request's completion has been decided (answered, failed or cancelled).
  bool isFinished() const;
  const std::string& url() const { return url_; }

 private:
  std::shared_ptr<HttpDelivery> delivery_;
  std::weak_ptr<HttpMultiLoop> loop_;
  std::string url_;
};

}  // namespace quillet::platform
