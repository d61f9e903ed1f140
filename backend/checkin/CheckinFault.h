#pragma once

#include <optional>
#include <string>

namespace quillet::backend {

// Ways the check-in server can misbehave, switched on at run time.
enum class CheckinFault {
  GarbageBody,      // "garbage": answers 200 with a body that is no JSON
  MissingDeviceId,  // "no_device_id": the answer lacks "android_id"
  FutureTime,       // "future_time": "time_msec" one hour ahead of the server's time
  ServerError,      // "server_error": HTTP 500, with the usual JSON body anyway
  Drop,             // "drop": closes the connection without an answer
};

// The fault of that name (as above), or nullopt.
std::optional<CheckinFault> checkinFaultNamed(const std::string& name);

}  // namespace quillet::backend
