#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/net/HttpHeaders.h"
#include "platform/net/HttpResponse.h"
#include "platform/net/HttpServerTrust.h"

namespace quillet::platform {

// Asked before a redirect is followed, on the session's own thread (keep it
// short, and do not call back into the session from it): `redirect` is the
// 3xx answer (without body), `newUrl` where it leads. Returning false refuses
// the redirect, and the 3xx answer becomes the final response.
using HttpRedirectHook = std::function<bool(const HttpResponse& redirect, const std::string& newUrl)>;

// One request to send: a plain value, copied by the session when it starts.
struct HttpRequest {
  std::string method = "GET";  // any token; "HEAD" asks for no body
  std::string url;
  HttpHeaders headers;        // sent in this order, after the transport's own
  std::vector<uint8_t> body;  // sent as it stands when not empty
  // The longest wait for the next byte (connecting, sending or receiving)
  // before the request fails with a time-out. <= 0 means no limit.
  double timeoutSeconds = 60.0;
  bool followRedirects = true;
  HttpRedirectHook redirectHook;  // optional; consulted only when following
  // Optional; when set, it judges each TLS server this request connects to,
  // and the request opens connections of its own that no other request reuses.
  HttpServerTrustHook serverTrustHook;

  HttpRequest() = default;
  explicit HttpRequest(std::string url, std::string method = "GET") : method(std::move(method)), url(std::move(url)) {}
  void setBody(std::string_view text) { body.assign(text.begin(), text.end()); }
};

}  // namespace quillet::platform
