#pragma once

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "platform/value/Error.h"

namespace quillet::platform {

// Whole-file reads and atomic whole-file writes. A write goes to a temporary
// file in the same directory, is flushed to disk, renamed over the target and
// the directory is flushed, so that after a crash at any moment the target
// holds either its old or its new contents in full. Stateless; callable from
// any thread (two concurrent writers of one path leave one of the two).
class AtomicFile {
 public:
  // Writes `data` to `path`. The file gets `mode` when given (e.g. 0600 for
  // secrets), else the mode of the file it replaces, else 0666 less the
  // umask. A replaced file's user attributes (its backup exclusion mark)
  // carry over. The directory must exist.
  // On failure returns false, fills `error` (domain errorDomain, code errno,
  // a description naming the path) and leaves the target untouched.
  static bool write(const std::filesystem::path& path, std::string_view data, Error* error = nullptr,
                    std::optional<mode_t> mode = std::nullopt);

  // Reads the whole file; nullopt and `error` (code errno, e.g. ENOENT) on failure.
  static std::optional<std::string> read(const std::filesystem::path& path, Error* error = nullptr);

  static constexpr const char* errorDomain = "quillet.platform.files";

  // An Error for errno value `code` about `path` during `operation`.
  static Error makeError(int code, std::string_view operation, const std::filesystem::path& path);
};

}  // namespace quillet::platform
