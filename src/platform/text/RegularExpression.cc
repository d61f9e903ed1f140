#include "platform/text/RegularExpression.h"

#include <unicode/regex.h>
#include <unicode/utf8.h>

#include "platform/text/IcuText.h"
#include "platform/text/TextError.h"

namespace quillet::platform {
namespace {

// The UTF-16 form of a UTF-8 text, with the byte offset of every code unit
// (and one past the end), so that ranges map back to the original bytes even
// when the input holds invalid sequences (each becomes U+FFFD).
struct Utf16Text {
  icu::UnicodeString text;
  std::vector<size_t> byteOffsets;

  explicit Utf16Text(std::string_view utf8) {
    const auto* bytes = reinterpret_cast<const uint8_t*>(utf8.data());
    int32_t length = static_cast<int32_t>(utf8.size());
    int32_t i = 0;
    byteOffsets.reserve(utf8.size() + 1);
    while (i < length) {
      int32_t start = i;
      UChar32 c;
      U8_NEXT(bytes, i, length, c);
      if (c < 0) c = 0xFFFD;
      text.append(c);
      byteOffsets.push_back(static_cast<size_t>(start));
      if (c > 0xFFFF) byteOffsets.push_back(static_cast<size_t>(start));
    }
    byteOffsets.push_back(utf8.size());
  }
};

uint32_t icuFlags(uint32_t options) {
  uint32_t flags = 0;
  if (options & RegularExpression::kCaseInsensitive) flags |= UREGEX_CASE_INSENSITIVE;
  if (options & RegularExpression::kAllowCommentsAndWhitespace) flags |= UREGEX_COMMENTS;
  if (options & RegularExpression::kIgnoreMetacharacters) flags |= UREGEX_LITERAL;
  if (options & RegularExpression::kDotMatchesLineSeparators) flags |= UREGEX_DOTALL;
  if (options & RegularExpression::kAnchorsMatchLines) flags |= UREGEX_MULTILINE;
  if (options & RegularExpression::kUseUnixLineSeparators) flags |= UREGEX_UNIX_LINES;
  if (options & RegularExpression::kUseUnicodeWordBoundaries) flags |= UREGEX_UWORD;
  return flags;
}

// Bounds the work of one match (steps of the engine, each on the order of a
// millisecond), so that a pathological pattern from outside input cannot
// stall the caller; a match that runs out counts as no match.
constexpr int32_t kMatchTimeLimit = 1000;

}  // namespace

struct RegularExpression::Compiled {
  std::unique_ptr<icu::RegexPattern> pattern;

  std::unique_ptr<icu::RegexMatcher> matcher(const icu::UnicodeString& input, UErrorCode& status) const {
    std::unique_ptr<icu::RegexMatcher> made(pattern->matcher(input, status));
    if (U_SUCCESS(status)) made->setTimeLimit(kMatchTimeLimit, status);
    return made;
  }
};

RegularExpression::RegularExpression(std::string pattern, std::shared_ptr<const Compiled> compiled)
    : pattern_(std::move(pattern)), compiled_(std::move(compiled)) {}

std::optional<RegularExpression> RegularExpression::create(std::string_view pattern, uint32_t options, Error* error) {
  UErrorCode status = U_ZERO_ERROR;
  UParseError parseError{};
  std::unique_ptr<icu::RegexPattern> compiled(
      icu::RegexPattern::compile(toIcu(pattern), icuFlags(options), parseError, status));
  if (U_FAILURE(status) || !compiled) {
    setTextError(error, kTextErrorBadPattern,
                 "Regular expression \"" + std::string(pattern) + "\" is invalid: " + u_errorName(status) +
                     " at offset " + std::to_string(parseError.offset));
    return std::nullopt;
  }
  return RegularExpression(std::string(pattern), std::make_shared<const Compiled>(Compiled{std::move(compiled)}));
}

size_t RegularExpression::numberOfCaptureGroups() const {
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<icu::RegexMatcher> matcher(compiled_->pattern->matcher(status));
  return U_SUCCESS(status) ? static_cast<size_t>(matcher->groupCount()) : 0;
}

std::vector<RegexMatch> RegularExpression::matches(std::string_view text, size_t limit) const {
  std::vector<RegexMatch> result;
  Utf16Text input(text);
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<icu::RegexMatcher> matcher = compiled_->matcher(input.text, status);
  if (U_FAILURE(status)) return result;
  int32_t groups = matcher->groupCount();
  while (result.size() < limit && matcher->find(status) && U_SUCCESS(status)) {
    RegexMatch match;
    for (int32_t g = 0; g <= groups; ++g) {
      RegexGroup group;
      int32_t start = matcher->start(g, status);
      int32_t end = matcher->end(g, status);
      if (U_SUCCESS(status) && start >= 0) {
        group.matched = true;
        group.location = static_cast<size_t>(start);
        group.length = static_cast<size_t>(end - start);
        group.byteOffset = input.byteOffsets[group.location];
        group.byteLength = input.byteOffsets[static_cast<size_t>(end)] - group.byteOffset;
        group.text = std::string(text.substr(group.byteOffset, group.byteLength));
      }
      match.groups.push_back(std::move(group));
    }
    result.push_back(std::move(match));
  }
  return result;
}

std::optional<RegexMatch> RegularExpression::firstMatch(std::string_view text) const {
  auto found = matches(text, 1);
  if (found.empty()) return std::nullopt;
  return std::move(found.front());
}

std::vector<RegexMatch> RegularExpression::allMatches(std::string_view text) const {
  return matches(text, static_cast<size_t>(-1));
}

size_t RegularExpression::numberOfMatches(std::string_view text) const { return allMatches(text).size(); }

bool RegularExpression::matchesWholeText(std::string_view text) const {
  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeString input = toIcu(text);
  std::unique_ptr<icu::RegexMatcher> matcher = compiled_->matcher(input, status);
  if (U_FAILURE(status)) return false;
  bool whole = matcher->matches(status);
  return U_SUCCESS(status) && whole;
}

std::string RegularExpression::replaceAll(std::string_view text, std::string_view replacementTemplate) const {
  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeString input = toIcu(text);
  std::unique_ptr<icu::RegexMatcher> matcher = compiled_->matcher(input, status);
  if (U_FAILURE(status)) return std::string(text);
  icu::UnicodeString replaced = matcher->replaceAll(toIcu(replacementTemplate), status);
  return U_SUCCESS(status) ? fromIcu(replaced) : std::string(text);
}

size_t RegularExpression::utf16Length(std::string_view text) { return static_cast<size_t>(toIcu(text).length()); }

}  // namespace quillet::platform
