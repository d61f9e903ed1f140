#include "http/reachability/Reachability.h"

#include "platform/log/Log.h"
#include "platform/value/Format.h"

namespace quillet::http {

namespace {

using namespace platform;

void logFlags(ReachabilityFlags flags, std::string_view comment) {
  std::string line = Reachability::flagStatusLine(flags, comment);
  // The log ends each line itself.
  if (!line.empty() && line.back() == '\n') line.pop_back();
  Log::write(line);
}

}  // namespace

std::unique_ptr<Reachability> Reachability::reachabilityForInternetConnection() {
  auto source = ReachabilitySource::forInternet();
  if (!source) return nullptr;
  return std::make_unique<Reachability>(std::move(source));
}

std::unique_ptr<Reachability> Reachability::reachabilityWithHostName(std::string_view hostName) {
  auto source = ReachabilitySource::forHostName(hostName);
  if (!source) return nullptr;
  return std::make_unique<Reachability>(std::move(source));
}

std::unique_ptr<Reachability> Reachability::reachabilityWithAddress(std::string_view address) {
  auto source = ReachabilitySource::forAddress(address);
  if (!source) return nullptr;
  return std::make_unique<Reachability>(std::move(source));
}

std::unique_ptr<Reachability> Reachability::reachabilityForLocalWiFi() {
  auto reachability = reachabilityWithAddress("169.254.0.0");
  if (reachability) reachability->alwaysReturnLocalWiFiStatus = true;
  return reachability;
}

Reachability::Reachability(std::unique_ptr<ReachabilitySource> reachabilityRef)
    : reachabilityRef_(std::move(reachabilityRef)) {}

bool Reachability::getFlags(ReachabilityFlags* flags) const {
  *flags = 0;
  if (!reachabilityRef_) return false;
  *flags = reachabilityRef_->flags();
  return true;
}

Reachability::NetworkStatus Reachability::currentReachabilityStatus() const {
  ReachabilityFlags flags = 0;
  if (!getFlags(&flags)) return NotReachable;
  return alwaysReturnLocalWiFiStatus ? localWiFiStatusForFlags(flags) : networkStatusForFlags(flags);
}

bool Reachability::connectionRequired() const {
  ReachabilityFlags flags = 0;
  return getFlags(&flags) && (flags & kReachabilityConnectionRequired) != 0;
}

Reachability::NetworkStatus Reachability::networkStatusForFlags(ReachabilityFlags flags) {
  logFlags(flags, "networkStatusForFlags");
  if ((flags & kReachabilityReachable) == 0) return NotReachable;
  if ((flags & kReachabilityIsWWAN) != 0) return ReachableViaWWAN;
  if ((flags & kReachabilityConnectionRequired) == 0) return ReachableViaWiFi;
  const bool automatic = (flags & (kReachabilityConnectionOnTraffic | kReachabilityConnectionOnDemand)) != 0;
  if (automatic && (flags & kReachabilityInterventionRequired) == 0) return ReachableViaWiFi;
  return NotReachable;
}

Reachability::NetworkStatus Reachability::localWiFiStatusForFlags(ReachabilityFlags flags) {
  logFlags(flags, "localWiFiStatusForFlags");
  const ReachabilityFlags both = kReachabilityReachable | kReachabilityIsDirect;
  return (flags & both) == both ? ReachableViaWiFi : NotReachable;
}

std::string Reachability::flagStatusLine(ReachabilityFlags flags, std::string_view comment) {
  auto letter = [flags](ReachabilityFlags bit, char c) { return Value(static_cast<int>((flags & bit) ? c : '-')); };
  return platform::format("Reachability Flag Status: %c%c %c%c%c%c%c%c%c %s\n", letter(kReachabilityIsWWAN, 'W'),
                          letter(kReachabilityReachable, 'R'), letter(kReachabilityTransientConnection, 't'),
                          letter(kReachabilityConnectionRequired, 'c'), letter(kReachabilityConnectionOnTraffic, 'C'),
                          letter(kReachabilityInterventionRequired, 'i'), letter(kReachabilityConnectionOnDemand, 'D'),
                          letter(kReachabilityIsLocalAddress, 'l'), letter(kReachabilityIsDirect, 'd'),
                          Value(std::string(comment)));
}

}  // namespace quillet::http
