#include "platform/net/HttpDelivery.h"

namespace quillet::platform {

HttpDelivery::HttpDelivery(std::shared_ptr<DispatchQueue> queue, HttpStreamCallbacks callbacks)
    : queue_(std::move(queue)), callbacks_(std::make_shared<const HttpStreamCallbacks>(std::move(callbacks))) {}

HttpDelivery::HttpDelivery(std::shared_ptr<DispatchQueue> queue, HttpCompletion completion)
    : queue_(std::move(queue)), completion_(std::move(completion)) {}

bool HttpDelivery::response(const HttpResponse& response) {
  std::lock_guard lock(mutex_);
  if (finished_) return false;
  if (!callbacks_) {
    gathered_ = response;
  } else if (callbacks_->onResponse) {
    queue_->async([callbacks = callbacks_, response] { callbacks->onResponse(response); });
  }
  return true;
}

bool HttpDelivery::data(const uint8_t* bytes, size_t size) {
  std::lock_guard lock(mutex_);
  if (finished_) return false;
  if (!callbacks_) {
    if (gathered_) gathered_->body.insert(gathered_->body.end(), bytes, bytes + size);
  } else if (callbacks_->onData) {
    queue_->async(
        [callbacks = callbacks_, chunk = std::vector<uint8_t>(bytes, bytes + size)] { callbacks->onData(chunk); });
  }
  return true;
}

bool HttpDelivery::complete(std::optional<Error> error) {
  std::lock_guard lock(mutex_);
  if (finished_) return false;
  finished_ = true;
  // The completion, and the delivery's hold on the queue, move into the
  // posted task, so that both are released on the caller's queue once it has
  // run. Were the last reference to the queue dropped here, on the session's
  // thread, the queue would join its workers from that thread while one of
  // them may be waiting for the session's thread to end (its owner being
  // destroyed on the queue): neither would ever finish. A run loop's queue
  // has no workers to join and stays here (held by its own posted task, it
  // would keep its loop alive).
  DispatchQueue* queue = queue_.get();
  std::shared_ptr<DispatchQueue> keep;
  if (queue->kind() != DispatchQueue::Kind::Main) keep = std::move(queue_);
  if (!callbacks_) {
    queue->async([keep = std::move(keep), completion = std::move(completion_), response = std::move(gathered_),
                  error = std::move(error)]() mutable {
      if (completion) completion(std::move(response), std::move(error));
    });
  } else {
    queue->async([keep = std::move(keep), callbacks = std::move(callbacks_), error = std::move(error)] {
      if (callbacks->onComplete) callbacks->onComplete(error);
    });
  }
  return true;
}

bool HttpDelivery::finished() const {
  std::lock_guard lock(mutex_);
  return finished_;
}

}  // namespace quillet::platform
