#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/net/HttpHeaders.h"

namespace quillet::platform {

// What a server answered: a plain value, copyable and safe to hand between threads.
struct HttpResponse {
  int statusCode = 0;
  std::string url;  // the URL that answered, after any redirects followed
  HttpHeaders headers;
  std::vector<uint8_t> body;  // empty in the streaming onResponse callback
  // The server's certificates in DER, leaf first, when the answer came over
  // a TLS connection opened for this request; empty otherwise.
  std::vector<std::vector<uint8_t>> certificateChain;

  // From Content-Type: the media type in lower case ("text/html"), "" when absent.
  std::string mimeType() const;
  // From Content-Type: the charset parameter as the server wrote it, without
  // quotes ("UTF-8"), "" when absent.
  std::string textEncodingName() const;
  // The body as text (bytes as they are).
  std::string bodyString() const { return std::string(body.begin(), body.end()); }
};

}  // namespace quillet::platform
