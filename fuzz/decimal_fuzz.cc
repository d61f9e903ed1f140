// Parses arbitrary text as a number by the "en_US" rules; what parses must
// print in its plain form and read back as the same number, and products
// must either fit exactly or be refused.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "platform/text/DecimalNumber.h"

using quillet::platform::DecimalNumber;
using quillet::platform::Error;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 64) return 0;  // prices and filter operands are short
  std::string_view text(reinterpret_cast<const char*>(data), size);
  Error error;
  auto number = DecimalNumber::parse(text, "en_US", &error);
  if (!number) {
    if (error.domain != DecimalNumber::kErrorDomain) std::abort();
    return 0;
  }
  const std::string plain = number->description();
  auto again = DecimalNumber::fromPlainText(plain);
  if (!again || !(*again == *number)) {
    std::fprintf(stderr, "plain form does not read back: %s\n", plain.c_str());
    std::abort();
  }
  if (auto product = number->multipliedBy(DecimalNumber(1000000))) (void)product->truncatedInteger();
  (void)number->doubleValue();
  (void)number->isInteger();
  return 0;
}
