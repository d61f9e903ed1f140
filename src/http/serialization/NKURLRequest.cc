#include "http/serialization/NKURLRequest.h"

namespace quillet::http {

platform::HttpRequest NKURLRequest::toHttpRequest() const {
  platform::HttpRequest request(URL, HTTPMethod);
  request.headers = allHTTPHeaderFields;
  request.body = HTTPBody;
  request.timeoutSeconds = timeoutInterval;
  return request;
}

}  // namespace quillet::http
