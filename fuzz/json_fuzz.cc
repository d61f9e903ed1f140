// Decodes arbitrary bytes as JSON; what decodes must encode, and decode again
// to an equal value.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "platform/value/Json.h"

using quillet::platform::Error;
using quillet::platform::jsonDecode;
using quillet::platform::jsonEncode;
using quillet::platform::Value;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  // The first byte picks the options, the rest is the text.
  bool allowFragments = data[0] & 1;
  bool pretty = data[0] & 2;
  std::string_view text(reinterpret_cast<const char*>(data + 1), size - 1);

  Error error;
  Value decoded = jsonDecode(text, &error, allowFragments);
  if (decoded.isNil()) {
    if (error.code != 3840) std::abort();
    return 0;
  }
  (void)decoded.description();
  Error encodeError;
  std::string encoded = jsonEncode(decoded, pretty, &encodeError);
  if (encoded.empty()) {
    std::fprintf(stderr, "encode failed: %s\n", encodeError.description().c_str());
    std::abort();
  }
  Value again = jsonDecode(encoded, nullptr, true);
  if (!(again == decoded)) {
    std::fprintf(stderr, "round trip differs:\n%s\n", encoded.c_str());
    std::abort();
  }
  return 0;
}
