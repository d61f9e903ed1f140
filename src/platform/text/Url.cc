#include "platform/text/Url.h"

#include <curl/curl.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <memory>

#include "platform/text/TextError.h"

namespace quillet::platform {
namespace {

constexpr unsigned kParseFlags = CURLU_NON_SUPPORT_SCHEME;

struct CurlUrlDeleter {
  void operator()(CURLU* h) const { curl_url_cleanup(h); }
};
using CurlUrl = std::unique_ptr<CURLU, CurlUrlDeleter>;

std::optional<std::string> part(CURLU* h, CURLUPart which) {
  char* value = nullptr;
  if (curl_url_get(h, which, &value, 0) != CURLUE_OK || !value) return std::nullopt;
  std::string out(value);
  curl_free(value);
  return out;
}

bool hasControlOrSpace(std::string_view text) {
  return std::any_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) <= 0x20; });
}

// "scheme:" followed by something other than "/": the scheme's length, else 0.
size_t opaqueSchemeLength(std::string_view text) {
  size_t colon = text.find(':');
  if (colon == 0 || colon == std::string_view::npos) return 0;
  if (!std::isalpha(static_cast<unsigned char>(text[0]))) return 0;
  for (size_t i = 1; i < colon; ++i) {
    char c = text[i];
    if (!std::isalnum(static_cast<unsigned char>(c)) && c != '+' && c != '-' && c != '.') return 0;
  }
  if (colon + 1 < text.size() && text[colon + 1] == '/') return 0;
  return colon;
}

std::string lower(std::string s) {
  for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return s;
}

}  // namespace

std::optional<Url> Url::parseOpaque(std::string_view text) {
  size_t colon = opaqueSchemeLength(text);
  if (colon == 0) return std::nullopt;
  Url url;
  url.opaque_ = true;
  url.absolute_ = std::string(text);
  url.scheme_ = lower(std::string(text.substr(0, colon)));
  std::string_view rest = text.substr(colon + 1);
  if (size_t hash = rest.find('#'); hash != std::string_view::npos) {
    url.fragment_ = std::string(rest.substr(hash + 1));
    rest = rest.substr(0, hash);
  }
  if (size_t question = rest.find('?'); question != std::string_view::npos) {
    url.query_ = std::string(rest.substr(question + 1));
    rest = rest.substr(0, question);
  }
  url.path_ = std::string(rest);
  return url;
}

std::optional<Url> Url::parse(std::string_view text, Error* error) {
  if (text.empty() || hasControlOrSpace(text)) {
    setTextError(error, kTextErrorBadUrl, "URL \"" + std::string(text) + "\" is malformed");
    return std::nullopt;
  }
  if (auto opaque = parseOpaque(text)) return opaque;
  CurlUrl h(curl_url());
  CURLUcode rc =
      h ? curl_url_set(h.get(), CURLUPART_URL, std::string(text).c_str(), kParseFlags) : CURLUE_OUT_OF_MEMORY;
  if (rc != CURLUE_OK) {
    setTextError(error, kTextErrorBadUrl, "URL \"" + std::string(text) + "\" is malformed: " + curl_url_strerror(rc));
    return std::nullopt;
  }
  Url url;
  url.absolute_ = std::string(text);
  url.scheme_ = lower(part(h.get(), CURLUPART_SCHEME).value_or(""));
  url.host_ = part(h.get(), CURLUPART_HOST).value_or("");
  if (auto port = part(h.get(), CURLUPART_PORT)) {
    int value = 0;
    if (std::from_chars(port->data(), port->data() + port->size(), value).ec == std::errc()) url.port_ = value;
  }
  url.path_ = part(h.get(), CURLUPART_PATH).value_or("");
  url.query_ = part(h.get(), CURLUPART_QUERY);
  url.fragment_ = part(h.get(), CURLUPART_FRAGMENT);
  url.user_ = part(h.get(), CURLUPART_USER);
  url.password_ = part(h.get(), CURLUPART_PASSWORD);
  return url;
}

std::optional<Url> Url::resolve(std::string_view reference, Error* error) const {
  if (hasControlOrSpace(reference)) {
    setTextError(error, kTextErrorBadUrl, "URL reference \"" + std::string(reference) + "\" is malformed");
    return std::nullopt;
  }
  if (opaqueSchemeLength(reference) > 0) return parse(reference, error);
  if (opaque_) {
    // An opaque base takes only absolute references.
    auto absolute = parse(reference, nullptr);
    if (!absolute) {
      setTextError(error, kTextErrorBadUrl, "Cannot resolve \"" + std::string(reference) + "\" against " + absolute_);
    }
    return absolute;
  }
  CurlUrl h(curl_url());
  CURLUcode rc = h ? curl_url_set(h.get(), CURLUPART_URL, absolute_.c_str(), kParseFlags) : CURLUE_OUT_OF_MEMORY;
  if (rc == CURLUE_OK) rc = curl_url_set(h.get(), CURLUPART_URL, std::string(reference).c_str(), kParseFlags);
  std::optional<std::string> resolved = rc == CURLUE_OK ? part(h.get(), CURLUPART_URL) : std::nullopt;
  if (!resolved) {
    setTextError(
        error, kTextErrorBadUrl,
        "Cannot resolve \"" + std::string(reference) + "\" against " + absolute_ + ": " + curl_url_strerror(rc));
    return std::nullopt;
  }
  return parse(*resolved, error);
}

}  // namespace quillet::platform
