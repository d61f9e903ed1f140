#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/net/HttpHeaders.h"
#include "platform/net/HttpRequest.h"

namespace quillet::http {

// A request as the transport builds it: the URL text, the method, header
// fields, body and the request settings. A plain value; the serializers make
// it and an operation copies it.
struct NKURLRequest {
  std::string URL;
  std::string HTTPMethod = "GET";
  platform::HttpHeaders allHTTPHeaderFields;
  std::vector<uint8_t> HTTPBody;

  // Request settings, at the platform's defaults until a serializer sets them.
  double timeoutInterval = 60.0;
  int cachePolicy = 0;
  bool allowsCellularAccess = true;
  bool HTTPShouldHandleCookies = true;
  bool HTTPShouldUsePipelining = false;
  int networkServiceType = 0;

  NKURLRequest() = default;
  explicit NKURLRequest(std::string url) : URL(std::move(url)) {}

  std::optional<std::string> valueForHTTPHeaderField(std::string_view field) const {
    return allHTTPHeaderFields.value(field);
  }
  void setValueForHTTPHeaderField(std::string value, std::string_view field) {
    allHTTPHeaderFields.set(field, std::move(value));
  }
  std::string HTTPBodyString() const { return std::string(HTTPBody.begin(), HTTPBody.end()); }

  // The request in the form the platform's HTTP session sends.
  platform::HttpRequest toHttpRequest() const;
};

}  // namespace quillet::http
