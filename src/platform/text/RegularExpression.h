#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/value/Error.h"

namespace quillet::platform {

// One capture group of a match. Ranges are given twice: in UTF-16 code units
// (`location`, `length`: the phone's string ranges, so "starts at 0 and
// spans the text" compares against utf16Length()) and in bytes of the UTF-8
// input (`byteOffset`, `byteLength`). A group that took no part in the match
// has matched == false, location == npos and empty text.
struct RegexGroup {
  static constexpr size_t npos = static_cast<size_t>(-1);
  bool matched = false;
  size_t location = npos;
  size_t length = 0;
  size_t byteOffset = npos;
  size_t byteLength = 0;
  std::string text;
};

// One match: groups[0] is the whole match, groups[i] capture group i.
struct RegexMatch {
  std::vector<RegexGroup> groups;
  const RegexGroup& operator[](size_t i) const { return groups.at(i); }
  const std::string& text() const { return groups.at(0).text; }
};

// A compiled regular expression in the usual (ICU) syntax, with look-behind,
// Unicode classes and "$1" replacement templates. Each match is bounded in
// time (about a second): a search that runs longer ends as "no (more)
// matches", and replaceAll then returns the text unchanged. Immutable after creation:
// const operations may run on several threads at once; copies share the
// compiled pattern.
class RegularExpression {
 public:
  enum Option : uint32_t {
    kCaseInsensitive = 1u << 0,
    kAllowCommentsAndWhitespace = 1u << 1,
    kIgnoreMetacharacters = 1u << 2,  // the pattern is literal text
    kDotMatchesLineSeparators = 1u << 3,
    kAnchorsMatchLines = 1u << 4,
    kUseUnixLineSeparators = 1u << 5,
    kUseUnicodeWordBoundaries = 1u << 6,
  };

  // A pattern that does not compile gives nullopt and the error.
  static std::optional<RegularExpression> create(std::string_view pattern, uint32_t options = 0,
                                                 Error* error = nullptr);

  std::optional<RegexMatch> firstMatch(std::string_view text) const;
  std::vector<RegexMatch> allMatches(std::string_view text) const;
  size_t numberOfMatches(std::string_view text) const;
  // True when the pattern matches the whole text (not merely a part of it).
  bool matchesWholeText(std::string_view text) const;
  // Replaces every match by `replacementTemplate` ("$1" names group 1, "\$" a dollar).
  std::string replaceAll(std::string_view text, std::string_view replacementTemplate) const;

  const std::string& pattern() const { return pattern_; }
  size_t numberOfCaptureGroups() const;

  // Length of a UTF-8 text in UTF-16 code units.
  static size_t utf16Length(std::string_view text);

 private:
  struct Compiled;
  RegularExpression(std::string pattern, std::shared_ptr<const Compiled> compiled);
  std::vector<RegexMatch> matches(std::string_view text, size_t limit) const;

  std::string pattern_;
  std::shared_ptr<const Compiled> compiled_;
};

}  // namespace quillet::platform
