#include "http/serialization/NKHTTPResponseSerializer.h"

#include "http/serialization/NKHTTPStatusText.h"
#include "http/serialization/NKSerializationError.h"
#include "platform/value/Format.h"

namespace quillet::http {

using platform::Error;
using platform::Value;
using E = NKSerializationError;

namespace {

Value::Dictionary failureInfo(std::string description, const platform::HttpResponse& response,
                              const std::vector<uint8_t>* data) {
  Value::Dictionary info;
  info.emplace(E::kDescriptionKey, Value(std::move(description)));
  info.emplace(E::kFailingURLKey, Value(response.url));
  info.emplace(E::kResponseKey, E::responseValue(response));
  if (data && !data->empty()) info.emplace(E::kDataKey, Value::bytes(*data));
  return info;
}

}  // namespace

std::shared_ptr<NKHTTPResponseSerializer> NKHTTPResponseSerializer::serializer() {
  return std::make_shared<NKHTTPResponseSerializer>();
}

std::set<int> NKHTTPResponseSerializer::defaultStatusCodes() {
  std::set<int> codes;
  for (int code = 200; code < 300; ++code) codes.insert(code);
  return codes;
}

bool NKHTTPResponseSerializer::validateResponse(const platform::HttpResponse* response,
                                                const std::vector<uint8_t>* data, std::optional<Error>* error) const {
  if (!response) return true;
  bool valid = true;
  std::optional<Error> validationError;
  const std::string mimeType = response->mimeType();
  if (acceptableContentTypes && acceptableContentTypes->count(mimeType) == 0) {
    if (data && !data->empty() && !response->url.empty()) {
      validationError =
          Error(E::kDomain, E::kCannotDecodeContentData,
                Value(failureInfo(platform::format("Request failed: unacceptable content-type: %@", mimeType),
                                  *response, data)));
    }
    valid = false;
  }
  if (acceptableStatusCodes && acceptableStatusCodes->count(response->statusCode) == 0) {
    if (!response->url.empty()) {
      Value::Dictionary info =
          failureInfo(platform::format("Request failed: %@ (%ld)",
                                       NKHTTPStatusText::localizedStringForStatusCode(response->statusCode),
                                       static_cast<long>(response->statusCode)),
                      *response, data);
      if (validationError) info.emplace(E::kUnderlyingErrorKey, E::errorValue(*validationError));
      validationError = Error(E::kDomain, E::kBadServerResponse, Value(std::move(info)));
    }
    valid = false;
  }
  if (error && !valid) *error = validationError;
  return valid;
}

Value NKHTTPResponseSerializer::responseObjectForResponse(const platform::HttpResponse* response,
                                                          const std::vector<uint8_t>* data,
                                                          std::optional<Error>* error) const {
  validateResponse(response, data, error);
  return data ? Value::bytes(*data) : Value();
}

}  // namespace quillet::http
