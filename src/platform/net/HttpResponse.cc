#include "platform/net/HttpResponse.h"

#include <string_view>

namespace quillet::platform {

std::string HttpResponse::mimeType() const {
  const auto type = headers.value("Content-Type");
  if (!type) return "";
  std::string_view text = *type;
  return HttpHeaders::lowercase(HttpHeaders::trim(text.substr(0, text.find(';'))));
}

std::string HttpResponse::textEncodingName() const {
  const auto type = headers.value("Content-Type");
  if (!type) return "";
  std::string_view rest = *type;
  for (size_t semi = rest.find(';'); semi != std::string_view::npos; semi = rest.find(';')) {
    rest.remove_prefix(semi + 1);
    std::string_view parameter = HttpHeaders::trim(rest.substr(0, rest.find(';')));
    const size_t equals = parameter.find('=');
    if (equals == std::string_view::npos ||
        HttpHeaders::lowercase(HttpHeaders::trim(parameter.substr(0, equals))) != "charset")
      continue;
    std::string_view value = HttpHeaders::trim(parameter.substr(equals + 1));
    if (value.size() >= 2 && value.front() == '"' && value.back() == '"') value = value.substr(1, value.size() - 2);
    return std::string(value);
  }
  return "";
}

}  // namespace quillet::platform
