#include "platform/net/HttpTask.h"

#include "platform/net/HttpError.h"
#include "platform/net/HttpMultiLoop.h"

namespace quillet::platform {

HttpTask::HttpTask(std::shared_ptr<HttpDelivery> delivery, std::weak_ptr<HttpMultiLoop> loop, std::string url)
    : delivery_(std::move(delivery)), loop_(std::move(loop)), url_(std::move(url)) {}

void HttpTask::cancel() {
  if (!delivery_->complete(HttpError::make(HttpError::kCancelled, url_))) return;
  if (auto loop = loop_.lock()) loop->wake();
}

bool HttpTask::isFinished() const { return delivery_->finished(); }

}  // namespace quillet::platform
