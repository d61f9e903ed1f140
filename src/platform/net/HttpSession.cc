#include "platform/net/HttpSession.h"

#include "platform/net/HttpMultiLoop.h"
#include "platform/net/HttpTransfer.h"

namespace quillet::platform {

namespace {

std::shared_ptr<DispatchQueue> orGlobal(std::shared_ptr<DispatchQueue> queue) {
  return queue ? std::move(queue) : DispatchQueue::global();
}

}  // namespace

HttpSession::HttpSession(HttpSessionOptions options) : options_(std::move(options)) {
  if (!options_.clock) options_.clock = Clock::system();
  loop_ = std::make_shared<HttpMultiLoop>(options_.clock);
}

HttpSession::~HttpSession() { loop_->stop(); }

std::shared_ptr<HttpTask> HttpSession::start(HttpRequest request, std::shared_ptr<DispatchQueue> queue,
                                             HttpCompletion completion) {
  auto delivery = std::make_shared<HttpDelivery>(orGlobal(std::move(queue)), std::move(completion));
  return launch(std::move(request), std::move(delivery));
}

std::shared_ptr<HttpTask> HttpSession::startStreaming(HttpRequest request, std::shared_ptr<DispatchQueue> queue,
                                                      HttpStreamCallbacks callbacks) {
  auto delivery = std::make_shared<HttpDelivery>(orGlobal(std::move(queue)), std::move(callbacks));
  return launch(std::move(request), std::move(delivery));
}

void HttpSession::invalidateAndCancel() { loop_->stop(); }

std::shared_ptr<HttpTask> HttpSession::launch(HttpRequest request, std::shared_ptr<HttpDelivery> delivery) {
  auto task = std::make_shared<HttpTask>(delivery, loop_, request.url);
  loop_->add(std::make_unique<HttpTransfer>(std::move(request), std::move(delivery), options_));
  return task;
}

}  // namespace quillet::platform
