#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <asio/ip/address.hpp>

#include "platform/reachability/ReachabilityFlags.h"

namespace quillet::platform {

// One network interface as the machine reports it.
struct NetworkInterface {
  std::string name;
  bool up = false;  // administratively up and running
  bool loopback = false;
  std::vector<asio::ip::address> addresses;
};

// What the machine's interfaces and routing tables say at one moment, and the
// reachability flags that follow for a destination. A plain value; any thread.
class NetworkSnapshot {
 public:
  // Reads the interfaces and the IPv4 and IPv6 routing tables of this machine.
  // Tables that cannot be read count as empty (nothing reachable but local addresses).
  static NetworkSnapshot current();
  // Builds a snapshot from interfaces and the texts of the two routing tables
  // in the kernel's /proc format. Malformed lines are skipped.
  static NetworkSnapshot fromTables(std::vector<NetworkInterface> interfaces, std::string_view ipv4Routes,
                                    std::string_view ipv6Routes);

  // Flags for reaching `address`. The unspecified address (0.0.0.0 or ::)
  // asks about any internet connection: reachable when a default route goes
  // through an interface that is up. Loopback and this machine's own
  // addresses are reachable, local and direct. Link-local addresses are
  // reachable and direct when a non-loopback interface is up. Others follow
  // the most specific route: direct without a gateway.
  ReachabilityFlags flagsForAddress(const asio::ip::address& address) const;

 private:
  struct Route {
    std::string interface;
    std::array<uint8_t, 16> destination{};  // IPv4 routes use the first 4 bytes
    int prefixLength = 0;
    bool viaGateway = false;
    bool v6 = false;
  };

  bool interfaceUsable(const std::string& name) const;
  bool isOwnAddress(const asio::ip::address& address) const;
  bool anyExternalInterfaceUp(bool v6) const;
  const Route* bestRoute(const asio::ip::address& address) const;
  ReachabilityFlags flagsForRoute(const Route& route) const;

  std::vector<NetworkInterface> interfaces_;
  std::vector<Route> routes_;
};

}  // namespace quillet::platform
