#include "backend/checkin/CheckinFault.h"

namespace quillet::backend {

std::optional<CheckinFault> checkinFaultNamed(const std::string& name) {
  if (name == "garbage") return CheckinFault::GarbageBody;
  if (name == "no_device_id") return CheckinFault::MissingDeviceId;
  if (name == "future_time") return CheckinFault::FutureTime;
  if (name == "server_error") return CheckinFault::ServerError;
  if (name == "drop") return CheckinFault::Drop;
  return std::nullopt;
}

}  // namespace quillet::backend
