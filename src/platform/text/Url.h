#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/value/Error.h"

namespace quillet::platform {

// A parsed absolute URL: a plain value, copyable and safe to share between
// threads. Parts are kept as they stand in the text (percent escapes are not
// decoded; see PercentEscape). Hierarchical URLs ("scheme://user@host:port/
// path?query#fragment") are parsed by libcurl's URL parser, any scheme
// allowed; an opaque URL ("about:blank", "mailto:a@b") has a scheme and a
// path only (plus query and fragment).
class Url {
 public:
  // Malformed text, or a text without a scheme, gives nullopt and the error.
  static std::optional<Url> parse(std::string_view text, Error* error = nullptr);

  // Resolves a reference ("../a?b", "/x", "?q", "#f", or an absolute URL)
  // against this URL, dot segments removed.
  std::optional<Url> resolve(std::string_view reference, Error* error = nullptr) const;

  // For parse(): the text as given; for resolve(): the resolved URL's text.
  const std::string& absoluteString() const { return absolute_; }
  const std::string& scheme() const { return scheme_; }  // lower case
  const std::string& host() const { return host_; }      // "" when none
  std::optional<int> port() const { return port_; }      // only when the text names one
  const std::string& path() const { return path_; }
  const std::optional<std::string>& query() const { return query_; }        // without "?"
  const std::optional<std::string>& fragment() const { return fragment_; }  // without "#"
  const std::optional<std::string>& user() const { return user_; }
  const std::optional<std::string>& password() const { return password_; }
  bool isOpaque() const { return opaque_; }

 private:
  Url() = default;
  static std::optional<Url> parseOpaque(std::string_view text);

  std::string absolute_;
  std::string scheme_;
  std::string host_;
  std::optional<int> port_;
  std::string path_;
  std::optional<std::string> query_;
  std::optional<std::string> fragment_;
  std::optional<std::string> user_;
  std::optional<std::string> password_;
  bool opaque_ = false;
};

}  // namespace quillet::platform
