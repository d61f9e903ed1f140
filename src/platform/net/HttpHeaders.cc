#include "platform/net/HttpHeaders.h"

#include <algorithm>

namespace quillet::platform {

namespace {

char lower(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

}  // namespace

HttpHeaders::HttpHeaders(std::initializer_list<Field> fields) : fields_(fields) {}

bool HttpHeaders::namesEqual(std::string_view a, std::string_view b) {
  return a.size() == b.size() &&
         std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return lower(x) == lower(y); });
}

std::string_view HttpHeaders::trim(std::string_view text) {
  constexpr std::string_view kBlank = " \t\r\n";
  const size_t first = text.find_first_not_of(kBlank);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlank) - first + 1);
}

std::string HttpHeaders::lowercase(std::string_view text) {
  std::string out(text);
  for (char& c : out) c = lower(c);
  return out;
}

void HttpHeaders::add(std::string name, std::string value) { fields_.emplace_back(std::move(name), std::move(value)); }

void HttpHeaders::set(std::string_view name, std::string value) {
  auto first = std::find_if(fields_.begin(), fields_.end(), [&](const Field& f) { return namesEqual(f.first, name); });
  if (first == fields_.end()) {
    fields_.emplace_back(std::string(name), std::move(value));
    return;
  }
  first->second = std::move(value);
  fields_.erase(std::remove_if(first + 1, fields_.end(), [&](const Field& f) { return namesEqual(f.first, name); }),
                fields_.end());
}

size_t HttpHeaders::remove(std::string_view name) {
  return std::erase_if(fields_, [&](const Field& f) { return namesEqual(f.first, name); });
}

std::optional<std::string> HttpHeaders::value(std::string_view name) const {
  for (const auto& field : fields_) {
    if (namesEqual(field.first, name)) return field.second;
  }
  return std::nullopt;
}

}  // namespace quillet::platform
