#include "platform/reachability/NetworkSnapshot.h"

#include <gtest/gtest.h>

namespace quillet::platform {
namespace {

constexpr ReachabilityFlags kLocal = kReachabilityReachable | kReachabilityIsLocalAddress | kReachabilityIsDirect;

asio::ip::address ip(const char* text) { return asio::ip::make_address(text); }

NetworkInterface interface(const char* name, bool up, std::vector<const char*> addresses, bool loopback = false) {
  NetworkInterface result{name, up, loopback, {}};
  for (const char* a : addresses) result.addresses.push_back(ip(a));
  return result;
}

// eth0 192.0.2.10/24 with a default route through 192.0.2.1, as the kernel prints it.
const char* kIpv4Routes =
    "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n"
    "eth0\t00000000\t010200C0\t0003\t0\t0\t0\t00000000\t0\t0\t0\n"
    "eth0\t000200C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\t0\t0\t0\n";
const char* kIpv6Routes =
    "fd000000000000000000000000000000 40 00000000000000000000000000000000 00 00000000000000000000000000000000 "
    "00000100 00000001 00000000 00000001     eth0\n"
    "00000000000000000000000000000000 00 00000000000000000000000000000000 00 fd000000000000000000000000000001 "
    "00000400 00000002 00000000 00000003     eth0\n"
    "00000000000000000000000000000000 00 00000000000000000000000000000000 00 00000000000000000000000000000000 "
    "ffffffff 00000001 00000000 00200200       lo\n";

std::vector<NetworkInterface> machine(bool ethUp) {
  return {interface("lo", true, {"127.0.0.1", "::1"}, true), interface("eth0", ethUp, {"192.0.2.10", "fd00::2"})};
}

TEST(NetworkSnapshotTest, DefaultRouteThroughAnUpInterfaceReachesTheInternet) {
  auto snapshot = NetworkSnapshot::fromTables(machine(true), kIpv4Routes, kIpv6Routes);
  EXPECT_EQ(snapshot.flagsForAddress(ip("0.0.0.0")), kReachabilityReachable);
  EXPECT_EQ(snapshot.flagsForAddress(ip("::")), kReachabilityReachable);
  EXPECT_EQ(snapshot.flagsForAddress(ip("8.8.8.8")), kReachabilityReachable);
  EXPECT_EQ(snapshot.flagsForAddress(ip("192.0.2.77")), kReachabilityReachable | kReachabilityIsDirect);
  EXPECT_EQ(snapshot.flagsForAddress(ip("fd00::99")), kReachabilityReachable | kReachabilityIsDirect);
  EXPECT_EQ(snapshot.flagsForAddress(ip("2001:db8::1")), kReachabilityReachable);
  EXPECT_EQ(snapshot.flagsForAddress(ip("169.254.0.0")), kReachabilityReachable | kReachabilityIsDirect);
  EXPECT_EQ(snapshot.flagsForAddress(ip("127.0.0.1")), kLocal);
  EXPECT_EQ(snapshot.flagsForAddress(ip("192.0.2.10")), kLocal);
  EXPECT_EQ(snapshot.flagsForAddress(ip("::1")), kLocal);
}

TEST(NetworkSnapshotTest, InterfaceDownOrNoRoutesLeavesOnlyLocalAddresses) {
  for (auto snapshot : {NetworkSnapshot::fromTables(machine(false), kIpv4Routes, kIpv6Routes),
                        NetworkSnapshot::fromTables(machine(true), "", "")}) {
    EXPECT_EQ(snapshot.flagsForAddress(ip("0.0.0.0")), 0u);
    EXPECT_EQ(snapshot.flagsForAddress(ip("8.8.8.8")), 0u);
    EXPECT_EQ(snapshot.flagsForAddress(ip("127.0.0.1")), kLocal);
  }
  // A down interface's own addresses are not local any more, nor is the link.
  auto down = NetworkSnapshot::fromTables(machine(false), kIpv4Routes, kIpv6Routes);
  EXPECT_EQ(down.flagsForAddress(ip("192.0.2.10")), 0u);
  EXPECT_EQ(down.flagsForAddress(ip("169.254.1.1")), 0u);
}

TEST(NetworkSnapshotTest, MobileInterfaceMarksWwanAndGarbageIsSkipped) {
  const char* routes =
      "Iface\tDestination\n"
      "garbage line\n"
      "eth0\tZZZZ\t0\t1\t0\t0\t0\t0\n"
      "wwan0\t00000000\t0100000A\t0003\t0\t0\t0\t00000000\t0\t0\t0\n";
  auto snapshot = NetworkSnapshot::fromTables({interface("wwan0", true, {"10.0.0.5"})}, routes, "short\n\n\x01");
  EXPECT_EQ(snapshot.flagsForAddress(ip("0.0.0.0")), kReachabilityReachable | kReachabilityIsWWAN);
  EXPECT_EQ(snapshot.flagsForAddress(ip("fd00::1")), 0u);  // no IPv6 routes came out of the garbage
}

TEST(NetworkSnapshotTest, ThisMachineAnswersLoopbackAsLocal) {
  EXPECT_EQ(NetworkSnapshot::current().flagsForAddress(ip("127.0.0.1")), kLocal);
}

}  // namespace
}  // namespace quillet::platform
