#pragma once

#include <optional>
#include <string>
#include <vector>

#include "http/serialization/NKAppInfo.h"

namespace quillet::http {

// The two header values every request serializer starts with. Pure functions.
class NKDefaultHeaders {
 public:
  // "Accept-Language": "<lang>;q=<q>" for each language in order, q falling
  // by 0.1 from 1, ending after the first entry whose q is 0.5 or less (so
  // at most six); joined with ", ". Nullopt for an empty list.
  static std::optional<std::string> acceptLanguage(const std::vector<std::string>& preferredLanguages);
  // "User-Agent": "<name>/<version> (<model>; <system> <version>; Scale/<scale>)",
  // made pure ASCII by transliteration when it is not.
  static std::string userAgent(const NKAppInfo& info);
};

}  // namespace quillet::http
