#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "http/operations/NKHTTPRequestOperation.h"
#include "http/operations/NKOperationQueue.h"
#include "http/reachability/NKNetworkReachabilityManager.h"
#include "http/security/NKSecurityPolicy.h"
#include "http/serialization/NKHTTPRequestSerializer.h"
#include "http/serialization/NKHTTPResponseSerializer.h"
#include "platform/dispatch/DispatchQueue.h"
#include "platform/value/Value.h"

namespace quillet::http {

// Builds request operations and puts them on its own queue. Settings are
// made on the caller's thread before requests are made; the operations it
// starts outlive it (the queue keeps them until they finish).
class NKHTTPRequestOperationManager {
 public:
  using Success = NKHTTPRequestOperation::Success;
  using Failure = NKHTTPRequestOperation::Failure;

  // initWithBaseURL: with no base URL.
  static std::shared_ptr<NKHTTPRequestOperationManager> manager();
  // A base URL with a path but no final "/" gets one. A base URL that does
  // not parse counts as none.
  explicit NKHTTPRequestOperationManager(std::optional<std::string> baseURL = std::nullopt);

  // The started operation, or null when the request could not be built; then
  // `failure` runs asynchronously on the completion queue with a null operation.
  std::shared_ptr<NKHTTPRequestOperation> GET(std::string_view URLString, const platform::Value& parameters,
                                              Success success, Failure failure);
  std::shared_ptr<NKHTTPRequestOperation> HEAD(std::string_view URLString, const platform::Value& parameters,
                                               Success success, Failure failure);
  std::shared_ptr<NKHTTPRequestOperation> POST(std::string_view URLString, const platform::Value& parameters,
                                               Success success, Failure failure);
  std::shared_ptr<NKHTTPRequestOperation> PUT(std::string_view URLString, const platform::Value& parameters,
                                              Success success, Failure failure);
  std::shared_ptr<NKHTTPRequestOperation> PATCH(std::string_view URLString, const platform::Value& parameters,
                                                Success success, Failure failure);
  std::shared_ptr<NKHTTPRequestOperation> DELETE(std::string_view URLString, const platform::Value& parameters,
                                                 Success success, Failure failure);

  // Builds (does not start) an operation for the method, URL and parameters.
  std::shared_ptr<NKHTTPRequestOperation> HTTPRequestOperationWithHTTPMethod(std::string_view method,
                                                                             std::string_view URLString,
                                                                             const platform::Value& parameters,
                                                                             Success success, Failure failure);
  // Builds (does not start) an operation for `request`, with this manager's settings.
  std::shared_ptr<NKHTTPRequestOperation> HTTPRequestOperationWithRequest(const NKURLRequest& request, Success success,
                                                                          Failure failure);

  const std::optional<std::string>& baseURL() const { return baseURL_; }
  NKOperationQueue& operationQueue() { return operationQueue_; }

  bool shouldUseCredentialStorage = true;
  std::shared_ptr<NKHTTPRequestSerializer> requestSerializer = NKHTTPRequestSerializer::serializer();
  std::shared_ptr<NKHTTPResponseSerializer> responseSerializer;  // a JSON serializer by default
  std::shared_ptr<NKSecurityPolicy> securityPolicy = NKSecurityPolicy::defaultPolicy();
  std::shared_ptr<NKNetworkReachabilityManager> reachabilityManager = NKNetworkReachabilityManager::sharedManager();
  std::shared_ptr<platform::DispatchQueue> completionQueue;  // null: the main queue

 private:
  std::shared_ptr<NKHTTPRequestOperation> enqueue(std::string_view method, std::string_view URLString,
                                                  const platform::Value& parameters, Success success, Failure failure);

  std::optional<std::string> baseURL_;
  NKOperationQueue operationQueue_;
};

}  // namespace quillet::http
