#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "platform/reachability/ReachabilityFlags.h"
#include "platform/reachability/ReachabilitySource.h"

namespace quillet::http {

// The transport's own network monitor. Its status numbers the network kinds
// the other way round from Reachability: WWAN 1, WiFi 2.
//
// Thread: startMonitoring and stopMonitoring on the main thread (the
// callback is scheduled on the main run loop); status reads from any thread.
// Status changes reach the block and the broadcast on the main queue.
class NKNetworkReachabilityManager : public std::enable_shared_from_this<NKNetworkReachabilityManager> {
 public:
  enum NKNetworkReachabilityStatus {
    NKNetworkReachabilityStatusUnknown = -1,
    NKNetworkReachabilityStatusNotReachable = 0,
    NKNetworkReachabilityStatusReachableViaWWAN = 1,
    NKNetworkReachabilityStatusReachableViaWiFi = 2,
  };
  enum Association { ForAddress = 1, ForName = 3 };
  using StatusBlock = std::function<void(NKNetworkReachabilityStatus)>;

  static constexpr const char* kDidChangeNotification = "com.kriozugin.networking.reachability.change";
  static constexpr const char* kNotificationStatusItem = "NetKitReachabilityNotificationStatusItem";

  // The zero address, made once, never started by the transport.
  static std::shared_ptr<NKNetworkReachabilityManager> sharedManager();
  // Null when the handle cannot be made.
  static std::shared_ptr<NKNetworkReachabilityManager> managerForDomain(std::string_view domain);
  static std::shared_ptr<NKNetworkReachabilityManager> managerForAddress(std::string_view address);

  NKNetworkReachabilityManager(std::unique_ptr<platform::ReachabilitySource> reachability, Association association);
  ~NKNetworkReachabilityManager();

  void startMonitoring();
  void stopMonitoring();
  void setReachabilityStatusChangeBlock(StatusBlock block);

  NKNetworkReachabilityStatus networkReachabilityStatus() const;
  bool isReachable() const;
  bool isReachableViaWWAN() const;
  bool isReachableViaWiFi() const;
  // "Not Reachable", "Reachable via WWAN", "Reachable via WiFi" or "Unknown".
  std::string localizedNetworkReachabilityStatusString() const;

  static NKNetworkReachabilityStatus statusForFlags(platform::ReachabilityFlags flags);
  static std::string stringFromNetworkReachabilityStatus(NKNetworkReachabilityStatus status);

 private:
  // Records the status and tells the block and observers, on the main queue.
  void deliver(platform::ReachabilityFlags flags);

  std::unique_ptr<platform::ReachabilitySource> networkReachability_;
  Association networkReachabilityAssociation_;
  mutable std::mutex mutex_;
  NKNetworkReachabilityStatus networkReachabilityStatus_ = NKNetworkReachabilityStatusUnknown;
  StatusBlock networkReachabilityStatusBlock_;
};

}  // namespace quillet::http
