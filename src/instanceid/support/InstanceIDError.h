#pragma once

#include <cstdint>

#include "platform/value/Error.h"

namespace quillet::instanceid {

inline constexpr const char* kInstanceIDErrorDomain = "com.stikri.iid";

// The facade's error codes. Lower layers report keychain statuses under the
// same domain with the status as the code.
enum InstanceIDErrorCode : int64_t {
  InstanceIDErrorCodeUnknown = 0,
  InstanceIDErrorCodeInProgress = 5,
  InstanceIDErrorCodeMissingCredential = 6,
  InstanceIDErrorCodeInvalidResponse = 7,
  InstanceIDErrorCodeNoValidCheckin = 501,
  InstanceIDErrorCodeMissingAPNSToken = 1001,
  InstanceIDErrorCodeMissingAPNSServerType = 1002,
  InstanceIDErrorCodeInvalidEntity = 1003,
  InstanceIDErrorCodeInvalidScope = 1004,
  InstanceIDErrorCodeMissingKeyPairStore = 1005,
  InstanceIDErrorCodeKeyPairFailure = 1006,
  InstanceIDErrorCodeDeleteTokensFailed = 1007,
  InstanceIDErrorCodeKeyPairMissing = 2001,
  InstanceIDErrorCodeInvalidKeyTags = 2002,
  InstanceIDErrorCodeStaleKeyPair = 2005,
};

// An error of domain "com.stikri.iid" with no user information.
inline platform::Error errorWithInstanceIDErrorCode(int64_t code) {
  return platform::Error(kInstanceIDErrorDomain, code);
}

inline int64_t instanceIDErrorCode(const platform::Error& error) { return error.code; }

}  // namespace quillet::instanceid
