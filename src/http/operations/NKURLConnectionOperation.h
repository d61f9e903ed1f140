#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "http/security/NKSecurityPolicy.h"
#include "http/serialization/NKURLRequest.h"
#include "platform/dispatch/DispatchQueue.h"
#include "platform/net/HttpResponse.h"
#include "platform/net/HttpTask.h"
#include "platform/value/Error.h"
#include "platform/value/Value.h"

namespace quillet::http {

// Drives one request on the network thread "NetKit" and keeps what came back.
//
// States go Ready -> Executing -> Finished (Paused reachable by pause());
// changes outside the allowed table are dropped silently. start, cancel,
// pause and resume may be called from any thread; `lock` (recursive) guards
// the state and the connection. Every connection event runs on the network
// thread; the start and finish broadcasts and the progress callback hop to
// the main queue. The connection holds the operation strongly while it runs.
// Settings (completionQueue, securityPolicy, ...) are made before start.
class NKURLConnectionOperation : public std::enable_shared_from_this<NKURLConnectionOperation> {
 public:
  enum NKOperationState : int64_t {
    NKOperationPausedState = -1,
    NKOperationReadyState = 1,
    NKOperationExecutingState = 2,
    NKOperationFinishedState = 3,
  };
  using DownloadProgress =
      std::function<void(size_t bytesRead, int64_t totalBytesRead, int64_t totalBytesExpectedToRead)>;
  // Told the name of a state property ("isReady", ...) that a state change touches.
  using KeyChangeObserver = std::function<void(const std::string& key)>;

  static constexpr const char* kDidStartNotification = "com.kriozugin.networking.operation.start";
  static constexpr const char* kDidFinishNotification = "com.kriozugin.networking.operation.finish";
  static constexpr const char* kLockName = "com.kriozugin.networking.operation.lock";

  // initWithRequest: a Ready operation for `request`.
  static std::shared_ptr<NKURLConnectionOperation> make(NKURLRequest request);
  virtual ~NKURLConnectionOperation() = default;
  NKURLConnectionOperation(const NKURLConnectionOperation&) = delete;
  NKURLConnectionOperation& operator=(const NKURLConnectionOperation&) = delete;

  // When cancelled: ends at once with the cancel error. When Ready: starts the connection.
  void start();
  // When neither finished nor cancelled: marks cancelled; an executing
  // operation's connection stops and the operation ends with -999
  // ("NSURLErrorDomain"). A Ready one ends so when it is started.
  void cancel();
  // Stops the connection of an executing operation (the finish broadcast is
  // posted) and goes to Paused; nothing when paused, finished or cancelled.
  void pause();
  // From Paused only: back to Ready and start again from the first byte.
  void resume();

  NKOperationState state() const;
  // Moves to `state` when the transition table allows it; otherwise nothing
  // changes and no observer is told. Reaching Finished runs the completion.
  void setState(NKOperationState state);
  bool isPaused() const { return state() == NKOperationPausedState; }
  bool isReady() const { return state() == NKOperationReadyState; }
  bool isExecuting() const { return state() == NKOperationExecutingState; }
  bool isFinished() const { return state() == NKOperationFinishedState; }
  bool isCancelled() const;

  // Runs `block` once the operation finishes, on completionQueue (or the
  // main queue). It is dropped after it runs, which frees what it holds.
  void setCompletionBlock(std::function<void()> block);
  void setDownloadProgressBlock(DownloadProgress block);
  void setKeyChangeObserver(KeyChangeObserver observer);
  // Called (under the lock, on the finishing thread) when the operation
  // reaches Finished; for the operation queue. Must not block.
  void addFinishObserver(std::function<void()> observer);

  const NKURLRequest& request() const { return request_; }
  std::optional<platform::HttpResponse> response() const;
  // The transport's error (or the cancel error).
  virtual std::optional<platform::Error> error() const;
  // The body, once loading ended without error.
  std::optional<std::vector<uint8_t>> responseData() const;
  // The body as text in the reply's character set (UTF-8 when it names none); "" when it is not text.
  std::string responseString() const;
  int64_t totalBytesRead() const;

  bool shouldUseCredentialStorage = true;
  std::shared_ptr<NKSecurityPolicy> securityPolicy = NKSecurityPolicy::defaultPolicy();
  std::shared_ptr<platform::DispatchQueue> completionQueue;  // null: the main queue
  platform::Value userInfo;

 protected:
  explicit NKURLConnectionOperation(NKURLRequest request);
  // The queue callbacks go to: completionQueue, or the main queue.
  std::shared_ptr<platform::DispatchQueue> callbackQueue() const;

  mutable std::recursive_mutex lock_;

 private:
  static bool transitionAllowed(NKOperationState from, NKOperationState to, bool cancelled);
  static std::string keyPathForState(NKOperationState state);

  // Network thread.
  void operationDidStart();
  void operationDidPause();
  void cancelConnection();
  void connectionDidReceiveResponse(uint64_t generation, const platform::HttpResponse& response);
  void connectionDidReceiveData(uint64_t generation, const std::vector<uint8_t>& chunk);
  void connectionDidComplete(uint64_t generation, const std::optional<platform::Error>& error);
  void connectionDidFinishLoading();
  void connectionDidFail(const platform::Error& error);
  void finish();
  void postNotification(const char* name);
  platform::HttpRequest connectionRequest() const;

  const NKURLRequest request_;
  NKOperationState state_ = NKOperationReadyState;
  bool cancelled_ = false;
  std::optional<platform::HttpResponse> response_;
  std::optional<platform::Error> error_;
  std::optional<std::vector<uint8_t>> responseData_;
  std::optional<std::vector<uint8_t>> outputStream_;  // the stream to memory while loading
  std::shared_ptr<platform::HttpTask> connection_;
  uint64_t connectionGeneration_ = 0;  // events of an earlier connection are stale
  int64_t totalBytesRead_ = 0;
  std::function<void()> completionBlock_;
  std::vector<std::function<void()>> finishObservers_;
  DownloadProgress downloadProgress_;
  KeyChangeObserver keyChangeObserver_;
};

}  // namespace quillet::http
