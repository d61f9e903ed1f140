#pragma once

#include <sys/types.h>
#include <filesystem>
#include <optional>
#include <string_view>

#include "platform/value/Value.h"

namespace quillet::platform {

// A property list kept in a file of its own, for the stores that persist
// that way (defaults, keychain, credential files). Reads report a damaged or
// unreadable file in one log line naming `what` (e.g. "defaults"), so the
// caller can start empty; writes are atomic. Stateless; any thread.
class PropertyListFile {
 public:
  // The file's contents; nullopt when it is absent (silently) or cannot be
  // read or parsed (with one log line).
  static std::optional<Value> load(const std::filesystem::path& path, std::string_view what);
  // Writes `value` in binary form atomically, with `mode` for a new file
  // (or to force one, e.g. 0600 for secrets). False with one log line on failure.
  static bool save(const std::filesystem::path& path, const Value& value, std::string_view what,
                   std::optional<mode_t> mode = std::nullopt);
  // The one log line for a file that parsed but does not hold what its owner expects.
  static void reportDamaged(const std::filesystem::path& path, std::string_view what);
};

}  // namespace quillet::platform
