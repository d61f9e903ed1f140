#include "platform/crypto/Fingerprint.h"

#include <farmhash.h>

namespace quillet::platform {

uint64_t fingerprint64(std::string_view bytes) { return util::Fingerprint64(bytes.data(), bytes.size()); }

}  // namespace quillet::platform
