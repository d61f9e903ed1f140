#include "http/operations/NKURLConnectionOperation.h"

#include <charconv>

#include "http/operations/NKNetworkThread.h"
#include "http/serialization/NKTextDecoding.h"
#include "platform/net/HttpError.h"
#include "platform/notifications/NotificationCenter.h"

namespace quillet::http {

using platform::DispatchQueue;
using platform::Error;
using platform::HttpResponse;
using platform::Value;

namespace {

int64_t expectedLength(const HttpResponse& response) {
  auto text = response.headers.value("Content-Length");
  int64_t length = -1;
  if (text) std::from_chars(text->data(), text->data() + text->size(), length);
  return length;
}

}  // namespace

std::shared_ptr<NKURLConnectionOperation> NKURLConnectionOperation::make(NKURLRequest request) {
  return std::shared_ptr<NKURLConnectionOperation>(new NKURLConnectionOperation(std::move(request)));
}

NKURLConnectionOperation::NKURLConnectionOperation(NKURLRequest request) : request_(std::move(request)) {}

std::shared_ptr<DispatchQueue> NKURLConnectionOperation::callbackQueue() const {
  return completionQueue ? completionQueue : DispatchQueue::main();
}

bool NKURLConnectionOperation::transitionAllowed(NKOperationState from, NKOperationState to, bool cancelled) {
  switch (from) {
    case NKOperationPausedState:
      return to == NKOperationReadyState;
    case NKOperationReadyState:
      return to == NKOperationPausedState || to == NKOperationExecutingState ||
             (to == NKOperationFinishedState && cancelled);
    case NKOperationExecutingState:
      return to == NKOperationPausedState || to == NKOperationFinishedState;
    case NKOperationFinishedState:
      return false;
  }
  return to == NKOperationPausedState || to == NKOperationReadyState || to == NKOperationExecutingState ||
         to == NKOperationFinishedState;
}

std::string NKURLConnectionOperation::keyPathForState(NKOperationState state) {
  switch (state) {
    case NKOperationPausedState:
      return "isPaused";
    case NKOperationReadyState:
      return "isReady";
    case NKOperationExecutingState:
      return "isExecuting";
    case NKOperationFinishedState:
      return "isFinished";
  }
  return "state";
}

NKURLConnectionOperation::NKOperationState NKURLConnectionOperation::state() const {
  std::lock_guard lock(lock_);
  return state_;
}

bool NKURLConnectionOperation::isCancelled() const {
  std::lock_guard lock(lock_);
  return cancelled_;
}

void NKURLConnectionOperation::setState(NKOperationState state) {
  std::lock_guard lock(lock_);
  if (!transitionAllowed(state_, state, cancelled_)) return;
  const NKOperationState old = state_;
  if (keyChangeObserver_) {
    keyChangeObserver_(keyPathForState(old));
    keyChangeObserver_(keyPathForState(state));
  }
  state_ = state;
  if (state != NKOperationFinishedState) return;
  // Finished is final: what waited for it runs now, once.
  auto completion = std::move(completionBlock_);
  completionBlock_ = nullptr;
  auto observers = std::move(finishObservers_);
  finishObservers_.clear();
  if (completion) completion();
  for (auto& observer : observers) observer();
}

void NKURLConnectionOperation::setCompletionBlock(std::function<void()> block) {
  std::lock_guard lock(lock_);
  if (!block) {
    completionBlock_ = nullptr;
    return;
  }
  // The wrapper holds the operation weakly; `block` decides what it holds.
  std::weak_ptr<NKURLConnectionOperation> weak = weak_from_this();
  completionBlock_ = [weak, block = std::move(block)]() mutable {
    auto self = weak.lock();
    auto queue = self ? self->callbackQueue() : DispatchQueue::main();
    queue->async(std::move(block));
  };
}

void NKURLConnectionOperation::setDownloadProgressBlock(DownloadProgress block) {
  std::lock_guard lock(lock_);
  downloadProgress_ = std::move(block);
}

void NKURLConnectionOperation::setKeyChangeObserver(KeyChangeObserver observer) {
  std::lock_guard lock(lock_);
  keyChangeObserver_ = std::move(observer);
}

void NKURLConnectionOperation::addFinishObserver(std::function<void()> observer) {
  std::lock_guard lock(lock_);
  finishObservers_.push_back(std::move(observer));
}

std::optional<HttpResponse> NKURLConnectionOperation::response() const {
  std::lock_guard lock(lock_);
  return response_;
}

std::optional<Error> NKURLConnectionOperation::error() const {
  std::lock_guard lock(lock_);
  return error_;
}

std::optional<std::vector<uint8_t>> NKURLConnectionOperation::responseData() const {
  std::lock_guard lock(lock_);
  return responseData_;
}

std::string NKURLConnectionOperation::responseString() const {
  std::lock_guard lock(lock_);
  if (!responseData_) return "";
  std::string encoding = response_ ? response_->textEncodingName() : "";
  if (!NKTextDecoding::isKnownEncoding(encoding)) encoding = "UTF-8";
  auto text = NKTextDecoding::decode(*responseData_, encoding);
  return text.outcome == NKTextDecoding::Outcome::Decoded ? text.utf8 : "";
}

int64_t NKURLConnectionOperation::totalBytesRead() const {
  std::lock_guard lock(lock_);
  return totalBytesRead_;
}

void NKURLConnectionOperation::start() {
  std::lock_guard lock(lock_);
  auto self = shared_from_this();
  if (cancelled_) {
    NKNetworkThread::shared().queue()->async([self] { self->cancelConnection(); });
  } else if (state_ == NKOperationReadyState) {
    setState(NKOperationExecutingState);
    NKNetworkThread::shared().queue()->async([self] { self->operationDidStart(); });
  }
}

void NKURLConnectionOperation::cancel() {
  std::lock_guard lock(lock_);
  if (state_ == NKOperationFinishedState || cancelled_) return;
  cancelled_ = true;
  if (state_ == NKOperationExecutingState) {
    auto self = shared_from_this();
    NKNetworkThread::shared().queue()->async([self] { self->cancelConnection(); });
  }
}

void NKURLConnectionOperation::pause() {
  std::lock_guard lock(lock_);
  if (state_ == NKOperationPausedState || state_ == NKOperationFinishedState || cancelled_) return;
  if (state_ == NKOperationExecutingState) {
    auto self = shared_from_this();
    NKNetworkThread::shared().queue()->async([self] { self->operationDidPause(); });
    postNotification(kDidFinishNotification);
  }
  setState(NKOperationPausedState);
}

void NKURLConnectionOperation::resume() {
  std::lock_guard lock(lock_);
  if (state_ != NKOperationPausedState) return;
  setState(NKOperationReadyState);
  start();
}

platform::HttpRequest NKURLConnectionOperation::connectionRequest() const {
  platform::HttpRequest request = request_.toHttpRequest();
  if (securityPolicy && !securityPolicy->usesPlatformEvaluation()) {
    request.serverTrustHook = [policy = securityPolicy](const platform::HttpServerTrust& trust) {
      return policy->evaluateServerTrust(trust, trust.host);
    };
  }
  return request;
}

void NKURLConnectionOperation::operationDidStart() {
  {
    std::lock_guard lock(lock_);
    if (!cancelled_) {
      outputStream_.emplace();
      totalBytesRead_ = 0;
      const uint64_t generation = ++connectionGeneration_;
      auto self = shared_from_this();
      platform::HttpStreamCallbacks callbacks;
      callbacks.onResponse = [self, generation](const HttpResponse& response) {
        self->connectionDidReceiveResponse(generation, response);
      };
      callbacks.onData = [self, generation](const std::vector<uint8_t>& chunk) {
        self->connectionDidReceiveData(generation, chunk);
      };
      callbacks.onComplete = [self, generation](const std::optional<Error>& error) {
        self->connectionDidComplete(generation, error);
      };
      auto& network = NKNetworkThread::shared();
      connection_ = network.session().startStreaming(connectionRequest(), network.queue(), std::move(callbacks));
    }
  }
  postNotification(kDidStartNotification);
}

void NKURLConnectionOperation::operationDidPause() {
  std::lock_guard lock(lock_);
  if (connection_) connection_->cancel();
  connection_.reset();
}

void NKURLConnectionOperation::cancelConnection() {
  Value::Dictionary info;
  if (!request_.URL.empty()) info.emplace("NSErrorFailingURLKey", Value(request_.URL));
  const Error error(platform::HttpError::kDomain, platform::HttpError::kCancelled, Value(std::move(info)));
  std::lock_guard lock(lock_);
  if (state_ == NKOperationFinishedState) return;
  if (connection_) {
    connection_->cancel();
    connectionDidFail(error);
  } else {
    error_ = error;
    finish();
  }
}

void NKURLConnectionOperation::connectionDidReceiveResponse(uint64_t generation, const HttpResponse& response) {
  std::lock_guard lock(lock_);
  if (generation != connectionGeneration_ || !connection_) return;
  response_ = response;
}

void NKURLConnectionOperation::connectionDidReceiveData(uint64_t generation, const std::vector<uint8_t>& chunk) {
  std::lock_guard lock(lock_);
  if (generation != connectionGeneration_ || !connection_ || !outputStream_) return;
  outputStream_->insert(outputStream_->end(), chunk.begin(), chunk.end());
  totalBytesRead_ += static_cast<int64_t>(chunk.size());
  if (downloadProgress_) {
    const int64_t expected = response_ ? expectedLength(*response_) : -1;
    DispatchQueue::main()->async([progress = downloadProgress_, bytes = chunk.size(), total = totalBytesRead_,
                                  expected] { progress(bytes, total, expected); });
  }
}

void NKURLConnectionOperation::connectionDidComplete(uint64_t generation, const std::optional<Error>& error) {
  std::lock_guard lock(lock_);
  if (generation != connectionGeneration_ || !connection_) return;
  if (error) {
    connectionDidFail(*error);
  } else {
    connectionDidFinishLoading();
  }
}

void NKURLConnectionOperation::connectionDidFinishLoading() {
  std::lock_guard lock(lock_);
  responseData_ = std::move(outputStream_);
  outputStream_.reset();
  connection_.reset();
  finish();
}

void NKURLConnectionOperation::connectionDidFail(const Error& error) {
  std::lock_guard lock(lock_);
  error_ = error;
  outputStream_.reset();
  connection_.reset();
  finish();
}

void NKURLConnectionOperation::finish() {
  {
    std::lock_guard lock(lock_);
    setState(NKOperationFinishedState);
  }
  postNotification(kDidFinishNotification);
}

void NKURLConnectionOperation::postNotification(const char* name) {
  auto self = shared_from_this();
  DispatchQueue::main()->async(
      [self, name] { platform::NotificationCenter::defaultCenter().post(name, static_cast<const void*>(self.get())); });
}

}  // namespace quillet::http
