#pragma once

#include <cstdint>

namespace quillet::instanceid {

// The levels of the subsystem's log, in order of weight.
enum class InstanceIDLogLevel : int8_t { Debug = 0, Info = 1, Error = 2, Assert = 3 };

}  // namespace quillet::instanceid
