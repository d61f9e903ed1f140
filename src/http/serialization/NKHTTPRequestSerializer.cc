#include "http/serialization/NKHTTPRequestSerializer.h"

#include <algorithm>

#include "http/serialization/NKDefaultHeaders.h"
#include "http/serialization/NKQueryStringPair.h"
#include "platform/net/HttpError.h"
#include "platform/text/DeviceLocale.h"
#include "platform/text/Url.h"
#include "platform/value/Format.h"

namespace quillet::http {

using platform::Error;
using platform::Value;

std::shared_ptr<NKHTTPRequestSerializer> NKHTTPRequestSerializer::serializer() {
  return std::make_shared<NKHTTPRequestSerializer>();
}

NKHTTPRequestSerializer::NKHTTPRequestSerializer()
    : NKHTTPRequestSerializer(NKAppInfo::current(), platform::DeviceLocale::preferredLanguages()) {}

NKHTTPRequestSerializer::NKHTTPRequestSerializer(const NKAppInfo& appInfo,
                                                 const std::vector<std::string>& preferredLanguages) {
  setValueForHTTPHeaderField(NKDefaultHeaders::acceptLanguage(preferredLanguages), "Accept-Language");
  setValueForHTTPHeaderField(NKDefaultHeaders::userAgent(appInfo), "User-Agent");
}

void NKHTTPRequestSerializer::setValueForHTTPHeaderField(std::optional<std::string> value, std::string_view field) {
  if (value) {
    headers_.set(field, std::move(*value));
  } else {
    headers_.remove(field);
  }
}

std::optional<std::string> NKHTTPRequestSerializer::valueForHTTPHeaderField(std::string_view field) const {
  return headers_.value(field);
}

void NKHTTPRequestSerializer::setQueryStringSerializationWithStyle(int style) {
  queryStringSerializationStyle_ = style;
  queryStringSerialization_ = nullptr;
}

void NKHTTPRequestSerializer::setQueryStringSerializationWithBlock(QueryStringSerialization block) {
  queryStringSerialization_ = std::move(block);
}

std::set<std::string> NKHTTPRequestSerializer::observedChangedKeyPaths() const {
  std::set<std::string> names;
  if (allowsCellularAccess_) names.insert("allowsCellularAccess");
  if (cachePolicy_) names.insert("cachePolicy");
  if (HTTPShouldHandleCookies_) names.insert("HTTPShouldHandleCookies");
  if (HTTPShouldUsePipelining_) names.insert("HTTPShouldUsePipelining");
  if (networkServiceType_) names.insert("networkServiceType");
  if (timeoutInterval_) names.insert("timeoutInterval");
  return names;
}

std::optional<NKURLRequest> NKHTTPRequestSerializer::requestWithMethod(std::string_view method,
                                                                       std::string_view URLString,
                                                                       const Value& parameters, Error* error) {
  Error parseError;
  if (!platform::Url::parse(URLString, &parseError)) {
    if (error) *error = platform::HttpError::make(platform::HttpError::kBadURL, URLString);
    return std::nullopt;
  }
  NKURLRequest request{std::string(URLString)};
  request.HTTPMethod = std::string(method);
  if (timeoutInterval_) request.timeoutInterval = *timeoutInterval_;
  if (cachePolicy_) request.cachePolicy = *cachePolicy_;
  if (allowsCellularAccess_) request.allowsCellularAccess = *allowsCellularAccess_;
  if (HTTPShouldHandleCookies_) request.HTTPShouldHandleCookies = *HTTPShouldHandleCookies_;
  if (HTTPShouldUsePipelining_) request.HTTPShouldUsePipelining = *HTTPShouldUsePipelining_;
  if (networkServiceType_) request.networkServiceType = *networkServiceType_;
  return requestBySerializingRequest(request, parameters, error);
}

std::optional<NKURLRequest> NKHTTPRequestSerializer::requestBySerializingRequest(const NKURLRequest& request,
                                                                                 const Value& parameters,
                                                                                 Error* error) const {
  NKURLRequest mutableRequest = request;
  for (const auto& [field, value] : headers_.fields()) {
    if (!mutableRequest.allHTTPHeaderFields.contains(field)) mutableRequest.allHTTPHeaderFields.set(field, value);
  }
  if (parameters.isNil() || parameters.isNull()) return mutableRequest;

  std::optional<std::string> query;
  if (queryStringSerialization_) {
    Error serializationError;
    query = queryStringSerialization_(parameters, &serializationError);
    if (!query) {
      if (error) *error = serializationError;
      return std::nullopt;
    }
  } else if (queryStringSerializationStyle_ == NKHTTPRequestQueryStringDefaultStyle) {
    query = NKQueryStringPair::queryStringFromParameters(parameters);
  }

  std::string method = mutableRequest.HTTPMethod;
  std::transform(method.begin(), method.end(), method.begin(), [](unsigned char c) { return std::toupper(c); });
  if (HTTPMethodsEncodingParametersInURI.count(method) > 0) {
    if (query) {
      auto url = platform::Url::parse(mutableRequest.URL);
      const bool hasQuery = url && url->query().has_value();
      mutableRequest.URL += platform::format(hasQuery ? "&%@" : "?%@", *query);
    }
  } else {
    if (!mutableRequest.allHTTPHeaderFields.contains("Content-Type")) {
      mutableRequest.allHTTPHeaderFields.set("Content-Type", "application/x-www-form-urlencoded");
    }
    const std::string body = query.value_or("");
    mutableRequest.HTTPBody.assign(body.begin(), body.end());
  }
  return mutableRequest;
}

}  // namespace quillet::http
