#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillet::http {

// Decoding of reply bytes as text in a named character set. Thread-safe.
class NKTextDecoding {
 public:
  enum class Outcome { Decoded, NotText, NotUTF8 };
  struct Result {
    Outcome outcome = Outcome::NotText;
    std::string utf8;     // the text, re-encoded as UTF-8, when Decoded
    std::u16string text;  // the decoded text, when not NotText
  };

  // True when the platform knows the character set `name` ("utf-8", "iso-8859-1", ...).
  static bool isKnownEncoding(std::string_view name);
  // Decodes `bytes` in `encoding` (an IANA name). NotText when a byte
  // sequence is not valid in that set; NotUTF8 when the text cannot be
  // written as UTF-8 (an unpaired surrogate).
  static Result decode(const std::vector<uint8_t>& bytes, std::string_view encoding);
  // The UTF-16 text as UTF-8 with unpaired surrogates replaced, for messages.
  static std::string describe(const std::u16string& text);
};

}  // namespace quillet::http
