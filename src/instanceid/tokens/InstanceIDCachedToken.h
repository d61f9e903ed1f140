#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace quillet::instanceid {

// The answer of a token cache lookup. A plain value.
class InstanceIDCachedToken {
 public:
  // What the cache holds for the lookup.
  enum Status : int64_t { StatusNone = 0, StatusUsable = 1, StatusStale = 2 };

  // Declared by the design and never set or read.
  bool shouldRefreshTokens = false;
  // The tokens in the cache are stale: invalidate before the next fetch.
  bool shouldInvalidateAllTokens = false;
  std::optional<std::string> token;
  int64_t status = StatusNone;

  // A non-empty token that may be handed out.
  bool isValid() const;
};

}  // namespace quillet::instanceid
