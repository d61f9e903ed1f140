#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/value/Error.h"

namespace quillet::platform {

// Applies a text transform, named by a transform id or compound id
// ("Any-Latin; Latin-ASCII; [:^ASCII:] Remove") or, failing that, given as
// transform rules ("a > b;"), to UTF-8 text.
// Not for concurrent use: one thread at a time per object (copy it per thread).
class Transliterator {
 public:
  // A transform that is neither a known id nor valid rules gives nullopt and the error.
  static std::optional<Transliterator> create(std::string_view transform, Error* error = nullptr);

  Transliterator(const Transliterator& other);
  Transliterator& operator=(const Transliterator& other);
  Transliterator(Transliterator&&) noexcept;
  Transliterator& operator=(Transliterator&&) noexcept;
  ~Transliterator();

  std::string transliterate(std::string_view text) const;

 private:
  struct Impl;
  explicit Transliterator(std::unique_ptr<Impl> impl);
  std::unique_ptr<Impl> impl_;
};

}  // namespace quillet::platform
