#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <asio/ip/address.hpp>

#include "platform/reachability/NetworkSnapshot.h"
#include "platform/reachability/ReachabilityFlags.h"

namespace quillet::platform {

class RunLoop;

// How the process pretends to be connected, set by the driver and tests:
// Automatic reads the machine; the others fix the flags of every target.
enum class ReachabilityOverride { Automatic, WiFi, Cellular, None };

// The phone's reachability handle: a flags word for one target (any internet
// connection, an address, or a host name) and a callback when it changes.
//
// The flags come from the process-wide override when one is set (WiFi:
// reachable; Cellular: reachable | is-WWAN; None: 0 - for every target,
// loopback included), else from the machine's interfaces and routes. A host
// name is never resolved (flags() must not block): "localhost" and IP
// literals are answered as addresses, other names as any internet connection.
//
// Thread: flags() from any thread; schedule(), unschedule() and destruction on
// the loop's thread. setOverride() from any thread.
class ReachabilitySource {
 public:
  using ChangeCallback = std::function<void(ReachabilityFlags)>;
  static constexpr double kDefaultPollSeconds = 3.0;

  // The all-zero IPv4 address: any internet connection.
  static std::unique_ptr<ReachabilitySource> forInternet();
  // An IPv4 or IPv6 literal (e.g. "169.254.0.0" for the local network); null when not one.
  static std::unique_ptr<ReachabilitySource> forAddress(std::string_view address);
  // A host name; null when empty.
  static std::unique_ptr<ReachabilitySource> forHostName(std::string_view hostName);

  ~ReachabilitySource();
  ReachabilitySource(const ReachabilitySource&) = delete;
  ReachabilitySource& operator=(const ReachabilitySource&) = delete;

  // The flags now.
  ReachabilityFlags flags() const;

  // Calls `callback` on `loop`'s thread with the new flags each time they
  // differ from the last ones seen (at first, the flags at this call). The
  // override's changes are posted at once; the machine is looked at every
  // `pollSeconds` of the loop's clock (so a ManualClock's advance() drives it).
  // Replaces an earlier schedule. The loop outlives the schedule.
  void schedule(RunLoop& loop, ChangeCallback callback, double pollSeconds = kDefaultPollSeconds);
  // Stops the callbacks; none is delivered after this returns.
  void unschedule();

  static void setOverride(ReachabilityOverride mode);
  static ReachabilityOverride currentOverride();
  // The fixed flags of an override; nullopt for Automatic.
  static std::optional<ReachabilityFlags> flagsForOverride(ReachabilityOverride mode);
  // Replaces how every source reads the machine (tests); an empty function restores it.
  static void setSnapshotProvider(std::function<NetworkSnapshot()> provider);

 private:
  struct Watch;
  struct Registry;
  static Registry& registry();
  static NetworkSnapshot snapshot();
  static ReachabilityFlags flagsFor(const asio::ip::address& address);
  static void check(const std::weak_ptr<Watch>& weak);
  explicit ReachabilitySource(asio::ip::address address);

  asio::ip::address address_;
  std::shared_ptr<Watch> watch_;
};

}  // namespace quillet::platform
