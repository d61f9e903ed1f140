#include "http/serialization/NKDefaultHeaders.h"

#include <algorithm>

#include "platform/text/Transliterator.h"
#include "platform/value/Format.h"

namespace quillet::http {
namespace {

bool isAscii(const std::string& text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace

std::optional<std::string> NKDefaultHeaders::acceptLanguage(const std::vector<std::string>& preferredLanguages) {
  std::string header;
  for (size_t i = 0; i < preferredLanguages.size(); ++i) {
    const double q = 1.0 - 0.1 * static_cast<double>(i);
    if (!header.empty()) header += ", ";
    header += platform::format("%@;q=%0.1g", preferredLanguages[i], q);
    if (q <= 0.5) break;
  }
  if (header.empty()) return std::nullopt;
  return header;
}

std::string NKDefaultHeaders::userAgent(const NKAppInfo& info) {
  const std::string& name = info.executableName.empty() ? info.bundleIdentifier : info.executableName;
  const std::string& version = info.shortVersionString.empty() ? info.bundleVersion : info.shortVersionString;
  std::string text = platform::format("%@/%@ (%@; %@ %@; Scale/%0.2f)", name, version, info.deviceModel,
                                      info.systemName, info.systemVersion, info.screenScale);
  if (isAscii(text)) return text;
  // Header values must be ASCII: spell other scripts in Latin letters and drop what remains.
  if (auto transform = platform::Transliterator::create("Any-Latin; Latin-ASCII; [:^ASCII:] Remove")) {
    text = transform->transliterate(text);
  }
  return text;
}

}  // namespace quillet::http
