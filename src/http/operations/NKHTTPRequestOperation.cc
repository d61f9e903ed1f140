#include "http/operations/NKHTTPRequestOperation.h"

namespace quillet::http {

using platform::DispatchQueue;
using platform::Error;
using platform::Value;

std::shared_ptr<NKHTTPRequestOperation> NKHTTPRequestOperation::make(NKURLRequest request) {
  return std::shared_ptr<NKHTTPRequestOperation>(new NKHTTPRequestOperation(std::move(request)));
}

NKHTTPRequestOperation::NKHTTPRequestOperation(NKURLRequest request) : NKURLConnectionOperation(std::move(request)) {}

const std::shared_ptr<DispatchQueue>& NKHTTPRequestOperation::processingQueue() {
  // Lives for the whole process, like the network thread.
  static const auto* queue = new std::shared_ptr<DispatchQueue>(DispatchQueue::makeConcurrent(kProcessingQueueLabel));
  return *queue;
}

std::shared_ptr<NKHTTPResponseSerializer> NKHTTPRequestOperation::responseSerializer() const {
  std::lock_guard lock(lock_);
  return responseSerializer_;
}

void NKHTTPRequestOperation::setResponseSerializer(std::shared_ptr<NKHTTPResponseSerializer> serializer) {
  std::lock_guard lock(lock_);
  responseSerializer_ = std::move(serializer);
}

std::optional<Error> NKHTTPRequestOperation::error() const {
  std::lock_guard lock(lock_);
  if (responseSerializationError_) return responseSerializationError_;
  return NKURLConnectionOperation::error();
}

Value NKHTTPRequestOperation::responseObject() {
  std::lock_guard lock(lock_);
  if (isFinished() && !NKURLConnectionOperation::error() && !serialized_ && responseSerializer_) {
    serialized_ = true;
    const auto reply = response();
    const auto data = responseData();
    std::optional<Error> serializationError;
    responseObject_ = responseSerializer_->responseObjectForResponse(reply ? &*reply : nullptr, data ? &*data : nullptr,
                                                                     &serializationError);
    responseSerializationError_ = serializationError;
  }
  return responseObject_;
}

void NKHTTPRequestOperation::setCompletionBlockWithSuccess(Success success, Failure failure) {
  // Strong on purpose: the completion keeps the operation until it has run,
  // and is dropped then (see setCompletionBlock).
  auto self = std::static_pointer_cast<NKHTTPRequestOperation>(shared_from_this());
  setCompletionBlock([self, success = std::move(success), failure = std::move(failure)] {
    processingQueue()->async([self, success, failure] {
      auto queue = self->callbackQueue();
      if (auto error = self->error()) {
        if (failure) queue->async([self, failure, error = *error] { failure(self, error); });
        return;
      }
      Value object = self->responseObject();
      if (auto error = self->error()) {
        if (failure) queue->async([self, failure, error = *error] { failure(self, error); });
      } else if (success) {
        queue->async([self, success, object = std::move(object)] { success(self, object); });
      }
    });
  });
}

}  // namespace quillet::http
