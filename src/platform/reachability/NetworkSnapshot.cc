#include "platform/reachability/NetworkSnapshot.h"

#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstring>
#include <fstream>
#include <sstream>

namespace quillet::platform {
namespace {

constexpr uint32_t kRouteUp = 0x0001;
constexpr uint32_t kRouteGateway = 0x0002;
constexpr uint32_t kRouteReject = 0x0200;

std::string readFile(const char* path) {
  std::ifstream in(path);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

bool parseHex(std::string_view text, uint32_t& value) {
  auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
  return ec == std::errc() && end == text.data() + text.size();
}

// 32 hex digits into 16 bytes.
bool parseHexBytes(std::string_view text, std::array<uint8_t, 16>& bytes) {
  if (text.size() != 32) return false;
  for (size_t i = 0; i < 16; ++i) {
    uint32_t byte;
    if (!parseHex(text.substr(i * 2, 2), byte)) return false;
    bytes[i] = static_cast<uint8_t>(byte);
  }
  return true;
}

std::vector<std::string_view> fields(std::string_view line) {
  std::vector<std::string_view> out;
  size_t i = 0;
  while (i < line.size()) {
    while (i < line.size() && (line[i] == ' ' || line[i] == '\t')) ++i;
    size_t start = i;
    while (i < line.size() && line[i] != ' ' && line[i] != '\t') ++i;
    if (i > start) out.push_back(line.substr(start, i - start));
  }
  return out;
}

template <typename Visit>
void eachLine(std::string_view text, Visit visit) {
  while (!text.empty()) {
    size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    visit(line);
    if (end == std::string_view::npos) break;
    text.remove_prefix(end + 1);
  }
}

std::array<uint8_t, 16> addressBytes(const asio::ip::address& address) {
  std::array<uint8_t, 16> bytes{};
  if (address.is_v4()) {
    auto v4 = address.to_v4().to_bytes();
    std::copy(v4.begin(), v4.end(), bytes.begin());
  } else {
    bytes = address.to_v6().to_bytes();
  }
  return bytes;
}

bool prefixMatches(const std::array<uint8_t, 16>& a, const std::array<uint8_t, 16>& b, int prefixLength) {
  int full = prefixLength / 8;
  if (std::memcmp(a.data(), b.data(), static_cast<size_t>(full)) != 0) return false;
  int rest = prefixLength % 8;
  if (rest == 0) return true;
  auto mask = static_cast<uint8_t>(0xff << (8 - rest));
  return (a[static_cast<size_t>(full)] & mask) == (b[static_cast<size_t>(full)] & mask);
}

bool isMobileInterface(const std::string& name) { return name.rfind("wwan", 0) == 0 || name.rfind("rmnet", 0) == 0; }

bool isLinkLocal(const asio::ip::address& address) {
  if (address.is_v6()) return address.to_v6().is_link_local();
  auto bytes = address.to_v4().to_bytes();
  return bytes[0] == 169 && bytes[1] == 254;
}

}  // namespace

NetworkSnapshot NetworkSnapshot::current() {
  std::vector<NetworkInterface> interfaces;
  ifaddrs* list = nullptr;
  if (getifaddrs(&list) == 0) {
    for (ifaddrs* entry = list; entry != nullptr; entry = entry->ifa_next) {
      if (entry->ifa_name == nullptr) continue;
      auto it = std::find_if(interfaces.begin(), interfaces.end(),
                             [&](const NetworkInterface& known) { return known.name == entry->ifa_name; });
      if (it == interfaces.end()) {
        it = interfaces.insert(interfaces.end(), NetworkInterface{entry->ifa_name, false, false, {}});
      }
      it->up = (entry->ifa_flags & IFF_UP) != 0 && (entry->ifa_flags & IFF_RUNNING) != 0;
      it->loopback = (entry->ifa_flags & IFF_LOOPBACK) != 0;
      if (entry->ifa_addr == nullptr) continue;
      if (entry->ifa_addr->sa_family == AF_INET) {
        const auto* in = reinterpret_cast<const sockaddr_in*>(entry->ifa_addr);
        asio::ip::address_v4::bytes_type bytes;
        std::memcpy(bytes.data(), &in->sin_addr, bytes.size());
        it->addresses.push_back(asio::ip::address_v4(bytes));
      } else if (entry->ifa_addr->sa_family == AF_INET6) {
        const auto* in6 = reinterpret_cast<const sockaddr_in6*>(entry->ifa_addr);
        asio::ip::address_v6::bytes_type bytes;
        std::memcpy(bytes.data(), &in6->sin6_addr, bytes.size());
        it->addresses.push_back(asio::ip::address_v6(bytes));
      }
    }
    freeifaddrs(list);
  }
  return fromTables(std::move(interfaces), readFile("/proc/net/route"), readFile("/proc/net/ipv6_route"));
}

NetworkSnapshot NetworkSnapshot::fromTables(std::vector<NetworkInterface> interfaces, std::string_view ipv4Routes,
                                            std::string_view ipv6Routes) {
  NetworkSnapshot snapshot;
  snapshot.interfaces_ = std::move(interfaces);
  // Iface Destination Gateway Flags RefCnt Use Metric Mask ...; addresses as the kernel's in-memory words.
  eachLine(ipv4Routes, [&](std::string_view line) {
    auto f = fields(line);
    uint32_t destination, gateway, flags, mask;
    if (f.size() < 8 || !parseHex(f[1], destination) || !parseHex(f[2], gateway) || !parseHex(f[3], flags) ||
        !parseHex(f[7], mask)) {
      return;
    }
    if ((flags & kRouteUp) == 0 || (flags & kRouteReject) != 0) return;
    Route route;
    route.interface = std::string(f[0]);
    std::memcpy(route.destination.data(), &destination, 4);
    route.prefixLength = std::popcount(mask);
    route.viaGateway = (flags & kRouteGateway) != 0 || gateway != 0;
    snapshot.routes_.push_back(std::move(route));
  });
  // Destination Prefix Source SourcePrefix NextHop Metric RefCnt Use Flags Iface, all hex.
  eachLine(ipv6Routes, [&](std::string_view line) {
    auto f = fields(line);
    Route route;
    std::array<uint8_t, 16> nextHop{};
    uint32_t prefix, flags;
    if (f.size() < 10 || !parseHexBytes(f[0], route.destination) || !parseHex(f[1], prefix) || prefix > 128 ||
        !parseHexBytes(f[4], nextHop) || !parseHex(f[8], flags)) {
      return;
    }
    if ((flags & kRouteUp) == 0 || (flags & kRouteReject) != 0) return;
    route.interface = std::string(f[9]);
    route.prefixLength = static_cast<int>(prefix);
    route.viaGateway = std::any_of(nextHop.begin(), nextHop.end(), [](uint8_t b) { return b != 0; });
    route.v6 = true;
    snapshot.routes_.push_back(std::move(route));
  });
  return snapshot;
}

// An interface the machine does not list is taken as usable: the route names it.
bool NetworkSnapshot::interfaceUsable(const std::string& name) const {
  for (const auto& interface : interfaces_) {
    if (interface.name == name) return interface.up;
  }
  return true;
}

bool NetworkSnapshot::isOwnAddress(const asio::ip::address& address) const {
  for (const auto& interface : interfaces_) {
    if (!interface.up) continue;
    if (std::find(interface.addresses.begin(), interface.addresses.end(), address) != interface.addresses.end()) {
      return true;
    }
  }
  return false;
}

bool NetworkSnapshot::anyExternalInterfaceUp(bool v6) const {
  return std::any_of(interfaces_.begin(), interfaces_.end(), [&](const NetworkInterface& interface) {
    return interface.up && !interface.loopback &&
           std::any_of(interface.addresses.begin(), interface.addresses.end(),
                       [&](const asio::ip::address& a) { return a.is_v6() == v6; });
  });
}

const NetworkSnapshot::Route* NetworkSnapshot::bestRoute(const asio::ip::address& address) const {
  auto bytes = addressBytes(address);
  const Route* best = nullptr;
  for (const auto& route : routes_) {
    if (route.v6 != address.is_v6() || !interfaceUsable(route.interface)) continue;
    if (!prefixMatches(route.destination, bytes, route.prefixLength)) continue;
    if (best == nullptr || route.prefixLength > best->prefixLength) best = &route;
  }
  return best;
}

ReachabilityFlags NetworkSnapshot::flagsForRoute(const Route& route) const {
  ReachabilityFlags flags = kReachabilityReachable;
  if (!route.viaGateway) flags |= kReachabilityIsDirect;
  if (isMobileInterface(route.interface)) flags |= kReachabilityIsWWAN;
  return flags;
}

ReachabilityFlags NetworkSnapshot::flagsForAddress(const asio::ip::address& address) const {
  if (address.is_unspecified()) {
    for (const auto& route : routes_) {
      if (route.prefixLength != 0 || !interfaceUsable(route.interface)) continue;
      bool loopback = std::any_of(interfaces_.begin(), interfaces_.end(),
                                  [&](const NetworkInterface& i) { return i.name == route.interface && i.loopback; });
      if (!loopback) return kReachabilityReachable | (isMobileInterface(route.interface) ? kReachabilityIsWWAN : 0);
    }
    return 0;
  }
  if (address.is_loopback() || isOwnAddress(address)) {
    return kReachabilityReachable | kReachabilityIsLocalAddress | kReachabilityIsDirect;
  }
  if (isLinkLocal(address)) {
    return anyExternalInterfaceUp(address.is_v6()) ? kReachabilityReachable | kReachabilityIsDirect : 0;
  }
  const Route* route = bestRoute(address);
  return route != nullptr ? flagsForRoute(*route) : 0;
}

}  // namespace quillet::platform
