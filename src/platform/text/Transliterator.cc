#include "platform/text/Transliterator.h"

#include <unicode/translit.h>

#include "platform/text/IcuText.h"
#include "platform/text/TextError.h"

namespace quillet::platform {

struct Transliterator::Impl {
  std::unique_ptr<icu::Transliterator> transform;
};

Transliterator::Transliterator(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
Transliterator::Transliterator(const Transliterator& other)
    : impl_(std::make_unique<Impl>(Impl{std::unique_ptr<icu::Transliterator>(other.impl_->transform->clone())})) {}
Transliterator& Transliterator::operator=(const Transliterator& other) {
  if (this != &other) *this = Transliterator(other);
  return *this;
}
Transliterator::Transliterator(Transliterator&&) noexcept = default;
Transliterator& Transliterator::operator=(Transliterator&&) noexcept = default;
Transliterator::~Transliterator() = default;

std::optional<Transliterator> Transliterator::create(std::string_view transform, Error* error) {
  icu::UnicodeString text = toIcu(transform);
  UParseError parseError{};
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<icu::Transliterator> made(
      icu::Transliterator::createInstance(text, UTRANS_FORWARD, parseError, status));
  if (U_FAILURE(status) || !made) {
    status = U_ZERO_ERROR;
    made.reset(icu::Transliterator::createFromRules("quillet-rules", text, UTRANS_FORWARD, parseError, status));
  }
  if (U_FAILURE(status) || !made) {
    setTextError(error, kTextErrorBadTransform,
                 "Transform \"" + std::string(transform) + "\" is invalid: " + u_errorName(status));
    return std::nullopt;
  }
  return Transliterator(std::make_unique<Impl>(Impl{std::move(made)}));
}

std::string Transliterator::transliterate(std::string_view text) const {
  icu::UnicodeString buffer = toIcu(text);
  impl_->transform->transliterate(buffer);
  return fromIcu(buffer);
}

}  // namespace quillet::platform
