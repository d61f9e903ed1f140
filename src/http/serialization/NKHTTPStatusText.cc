#include "http/serialization/NKHTTPStatusText.h"

#include <map>

namespace quillet::http {

std::string NKHTTPStatusText::localizedStringForStatusCode(int statusCode) {
  static const std::map<int, const char*> texts = {
      {100, "continue"},
      {101, "switching protocols"},
      {200, "no error"},
      {201, "created"},
      {202, "accepted"},
      {203, "non-authoritative information"},
      {204, "no content"},
      {205, "reset content"},
      {206, "partial content"},
      {300, "multiple choices"},
      {301, "moved permanently"},
      {302, "found"},
      {303, "see other"},
      {304, "not modified"},
      {305, "needs proxy"},
      {307, "redirected"},
      {400, "bad request"},
      {401, "unauthorized"},
      {402, "payment required"},
      {403, "forbidden"},
      {404, "not found"},
      {405, "method not allowed"},
      {406, "unacceptable"},
      {407, "proxy authentication required"},
      {408, "request timed out"},
      {409, "conflict"},
      {410, "no longer exists"},
      {411, "length required"},
      {412, "precondition failed"},
      {413, "request too large"},
      {414, "requested URL too long"},
      {415, "unsupported media type"},
      {416, "requested range not satisfiable"},
      {417, "expectation failed"},
      {500, "internal server error"},
      {501, "unimplemented"},
      {502, "bad gateway"},
      {503, "service unavailable"},
      {504, "gateway timed out"},
      {505, "unsupported version"},
  };
  if (auto it = texts.find(statusCode); it != texts.end()) return it->second;
  if (statusCode >= 100 && statusCode < 200) return "informational";
  if (statusCode >= 200 && statusCode < 300) return "success";
  if (statusCode >= 300 && statusCode < 400) return "redirected";
  if (statusCode >= 400 && statusCode < 500) return "client error";
  if (statusCode >= 500 && statusCode < 600) return "server error";
  return "unknown";
}

}  // namespace quillet::http
