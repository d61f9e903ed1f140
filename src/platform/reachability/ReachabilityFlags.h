#pragma once

#include <cstdint>

namespace quillet::platform {

// The phone's reachability flags word, bit for bit.
using ReachabilityFlags = uint32_t;

inline constexpr ReachabilityFlags kReachabilityTransientConnection = 1u << 0;
inline constexpr ReachabilityFlags kReachabilityReachable = 1u << 1;
inline constexpr ReachabilityFlags kReachabilityConnectionRequired = 1u << 2;
inline constexpr ReachabilityFlags kReachabilityConnectionOnTraffic = 1u << 3;
inline constexpr ReachabilityFlags kReachabilityInterventionRequired = 1u << 4;
inline constexpr ReachabilityFlags kReachabilityConnectionOnDemand = 1u << 5;
inline constexpr ReachabilityFlags kReachabilityIsLocalAddress = 1u << 16;
inline constexpr ReachabilityFlags kReachabilityIsDirect = 1u << 17;
inline constexpr ReachabilityFlags kReachabilityIsWWAN = 1u << 18;

}  // namespace quillet::platform
