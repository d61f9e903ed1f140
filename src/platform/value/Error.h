#pragma once

#include <cstdint>
#include <string>

#include "platform/value/Value.h"

namespace quillet::platform {

// A failure as a value: a domain, a code and a user-info dictionary.
// Passed through out arguments and callbacks; never thrown. A
// default-made Error (no domain, code 0) is "no error": ok() tells.
// Where a call may or may not fail, prefer std::optional<Error>.
struct Error {
  std::string domain;
  int64_t code = 0;
  Value userInfo;  // a dictionary, or nil

  Error() = default;
  Error(std::string domain, int64_t code, Value userInfo = Value())
      : domain(std::move(domain)), code(code), userInfo(std::move(userInfo)) {}

  // An error whose userInfo holds `description` under "NSLocalizedDescription".
  static Error withDescription(std::string domain, int64_t code, std::string description);

  // True for the "no error" value: nothing was set.
  bool ok() const { return domain.empty() && code == 0; }

  // userInfo["NSLocalizedDescription"] when it is a string, else
  // "The operation couldn’t be completed. (<domain> error <code>.)".
  std::string localizedDescription() const;
  // The NSCocoaErrorDomain reads "(Cocoa error <code>.)" there.
  // "Error Domain=<domain> Code=<code> \"<localizedDescription>\" UserInfo={k1=v1, k2=v2}",
  // the entries in key order with their "%@" texts; without " UserInfo=..."
  // when userInfo is nil or empty.
  std::string description() const;
};

}  // namespace quillet::platform
