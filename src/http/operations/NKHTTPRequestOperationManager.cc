#include "http/operations/NKHTTPRequestOperationManager.h"

#include "http/serialization/NKJSONResponseSerializer.h"
#include "platform/text/Url.h"

namespace quillet::http {

using platform::DispatchQueue;
using platform::Error;
using platform::Value;

std::shared_ptr<NKHTTPRequestOperationManager> NKHTTPRequestOperationManager::manager() {
  return std::make_shared<NKHTTPRequestOperationManager>();
}

NKHTTPRequestOperationManager::NKHTTPRequestOperationManager(std::optional<std::string> baseURL)
    : responseSerializer(NKJSONResponseSerializer::serializer()) {
  if (!baseURL) return;
  auto url = platform::Url::parse(*baseURL);
  if (!url) return;
  std::string text = url->absoluteString();
  // Relative paths resolve inside the base's last folder only when it ends with "/".
  if (!url->path().empty() && text.back() != '/') text += '/';
  baseURL_ = text;
}

std::shared_ptr<NKHTTPRequestOperation> NKHTTPRequestOperationManager::HTTPRequestOperationWithRequest(
    const NKURLRequest& request, Success success, Failure failure) {
  auto operation = NKHTTPRequestOperation::make(request);
  operation->setResponseSerializer(responseSerializer);
  operation->shouldUseCredentialStorage = shouldUseCredentialStorage;
  operation->securityPolicy = securityPolicy;
  operation->setCompletionBlockWithSuccess(std::move(success), std::move(failure));
  operation->completionQueue = completionQueue;
  return operation;
}

std::shared_ptr<NKHTTPRequestOperation> NKHTTPRequestOperationManager::HTTPRequestOperationWithHTTPMethod(
    std::string_view method, std::string_view URLString, const Value& parameters, Success success, Failure failure) {
  std::string absolute(URLString);
  if (baseURL_) {
    if (auto resolved = platform::Url::parse(*baseURL_)->resolve(URLString)) absolute = resolved->absoluteString();
  } else if (auto parsed = platform::Url::parse(URLString)) {
    absolute = parsed->absoluteString();
  }
  Error serializationError;
  auto request = requestSerializer->requestWithMethod(method, absolute, parameters, &serializationError);
  if (!request) {
    if (failure) {
      auto queue = completionQueue ? completionQueue : DispatchQueue::main();
      queue->async([failure, serializationError] { failure(nullptr, serializationError); });
    }
    return nullptr;
  }
  return HTTPRequestOperationWithRequest(*request, std::move(success), std::move(failure));
}

std::shared_ptr<NKHTTPRequestOperation> NKHTTPRequestOperationManager::enqueue(std::string_view method,
                                                                               std::string_view URLString,
                                                                               const Value& parameters, Success success,
                                                                               Failure failure) {
  auto operation =
      HTTPRequestOperationWithHTTPMethod(method, URLString, parameters, std::move(success), std::move(failure));
  if (operation) operationQueue_.addOperation(operation);
  return operation;
}

std::shared_ptr<NKHTTPRequestOperation> NKHTTPRequestOperationManager::GET(std::string_view URLString,
                                                                           const Value& parameters, Success success,
                                                                           Failure failure) {
  return enqueue("GET", URLString, parameters, std::move(success), std::move(failure));
}

std::shared_ptr<NKHTTPRequestOperation> NKHTTPRequestOperationManager::HEAD(std::string_view URLString,
                                                                            const Value& parameters, Success success,
                                                                            Failure failure) {
  return enqueue("HEAD", URLString, parameters, std::move(success), std::move(failure));
}

std::shared_ptr<NKHTTPRequestOperation> NKHTTPRequestOperationManager::POST(std::string_view URLString,
                                                                            const Value& parameters, Success success,
                                                                            Failure failure) {
  return enqueue("POST", URLString, parameters, std::move(success), std::move(failure));
}

std::shared_ptr<NKHTTPRequestOperation> NKHTTPRequestOperationManager::PUT(std::string_view URLString,
                                                                           const Value& parameters, Success success,
                                                                           Failure failure) {
  return enqueue("PUT", URLString, parameters, std::move(success), std::move(failure));
}

std::shared_ptr<NKHTTPRequestOperation> NKHTTPRequestOperationManager::PATCH(std::string_view URLString,
                                                                             const Value& parameters, Success success,
                                                                             Failure failure) {
  return enqueue("PATCH", URLString, parameters, std::move(success), std::move(failure));
}

std::shared_ptr<NKHTTPRequestOperation> NKHTTPRequestOperationManager::DELETE(std::string_view URLString,
                                                                              const Value& parameters, Success success,
                                                                              Failure failure) {
  return enqueue("DELETE", URLString, parameters, std::move(success), std::move(failure));
}

}  // namespace quillet::http
