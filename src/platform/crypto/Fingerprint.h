#pragma once

#include <cstdint>
#include <string_view>

namespace quillet::platform {

// The 64-bit fingerprint of a byte string (FarmHash's Fingerprint64): the
// same bytes give the same value on every machine and in every version, so
// it can be stored and sent. Pure; any thread.
uint64_t fingerprint64(std::string_view bytes);

}  // namespace quillet::platform
