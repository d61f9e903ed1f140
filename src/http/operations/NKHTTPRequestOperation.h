#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "http/operations/NKURLConnectionOperation.h"
#include "http/serialization/NKHTTPResponseSerializer.h"

namespace quillet::http {

// A connection operation that runs its reply through a response serializer
// and ends in exactly one of two callbacks. The serializer runs on the
// shared concurrent queue "com.kriozugin.networking.http-request.processing";
// the callbacks run on completionQueue, or the main queue when it is null.
class NKHTTPRequestOperation : public NKURLConnectionOperation {
 public:
  static constexpr const char* kProcessingQueueLabel = "com.kriozugin.networking.http-request.processing";
  using Success = std::function<void(const std::shared_ptr<NKHTTPRequestOperation>& operation,
                                     const platform::Value& responseObject)>;
  using Failure =
      std::function<void(const std::shared_ptr<NKHTTPRequestOperation>& operation, const platform::Error& error)>;

  static std::shared_ptr<NKHTTPRequestOperation> make(NKURLRequest request);
  // The queue shared by all HTTP operations for decoding replies.
  static const std::shared_ptr<platform::DispatchQueue>& processingQueue();

  // Sets the completion: on the processing queue, the transport's error goes
  // to `failure`; else the reply is serialized and goes to `failure` with the
  // serializer's error or to `success` with the object. Either may be empty.
  // The completion holds the operation until it has run.
  void setCompletionBlockWithSuccess(Success success, Failure failure);

  // The serialized reply: nil until the operation has finished without
  // error. The first read runs the serializer (once).
  platform::Value responseObject();
  // The serializer's error when there is one, else the transport's.
  std::optional<platform::Error> error() const override;

  std::shared_ptr<NKHTTPResponseSerializer> responseSerializer() const;
  void setResponseSerializer(std::shared_ptr<NKHTTPResponseSerializer> serializer);

 protected:
  explicit NKHTTPRequestOperation(NKURLRequest request);

 private:
  std::shared_ptr<NKHTTPResponseSerializer> responseSerializer_ = NKHTTPResponseSerializer::serializer();
  bool serialized_ = false;
  platform::Value responseObject_;
  std::optional<platform::Error> responseSerializationError_;
};

}  // namespace quillet::http
