#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/reachability/ReachabilityFlags.h"
#include "platform/reachability/ReachabilitySource.h"

namespace quillet::http {

// The news client's answer to "can a request go out now?": a reachability
// handle for one target and the status its flags give. Made and read on the
// main thread; currentReachabilityStatus is synchronous.
class Reachability {
 public:
  enum NetworkStatus { NotReachable = 0, ReachableViaWiFi = 1, ReachableViaWWAN = 2 };

  // The default route (IPv4 0.0.0.0).
  static std::unique_ptr<Reachability> reachabilityForInternetConnection();
  // Null when the name is empty.
  static std::unique_ptr<Reachability> reachabilityWithHostName(std::string_view hostName);
  // Null when `address` is not an IP literal.
  static std::unique_ptr<Reachability> reachabilityWithAddress(std::string_view address);
  // The link-local network (169.254.0.0), read with the local WiFi rule.
  static std::unique_ptr<Reachability> reachabilityForLocalWiFi();

  explicit Reachability(std::unique_ptr<platform::ReachabilitySource> reachabilityRef);

  // The flags now; false (and 0) when they cannot be read (no handle).
  bool getFlags(platform::ReachabilityFlags* flags) const;
  // NotReachable when the flags cannot be read; else by the local WiFi rule
  // when alwaysReturnLocalWiFiStatus, else by the network rule.
  NetworkStatus currentReachabilityStatus() const;
  bool connectionRequired() const;

  // Each logs the flags first ("Reachability Flag Status: ...").
  static NetworkStatus networkStatusForFlags(platform::ReachabilityFlags flags);
  static NetworkStatus localWiFiStatusForFlags(platform::ReachabilityFlags flags);
  // The debug line: a letter per flag or "-", then the name of the operation that logged.
  static std::string flagStatusLine(platform::ReachabilityFlags flags, std::string_view comment);

  bool alwaysReturnLocalWiFiStatus = false;

 private:
  std::unique_ptr<platform::ReachabilitySource> reachabilityRef_;
};

}  // namespace quillet::http
