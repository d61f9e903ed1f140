#pragma once

#include <optional>
#include <string_view>

namespace quillet::backend {

// Ways the relay server misbehaves on request. The first four are modes that
// hold until cleared; the others are actions done at once on every signed-in
// connection.
enum class RelayFault {
  WrongVersion,    // mode: the version byte sent is 39
  LoginError,      // mode: every login is answered with an error
  Silence,         // mode: pings are not answered
  SplitBytes,      // mode: every frame goes out one byte per write
  NegativeTag,     // action: a frame with tag 0x80
  OversizedFrame,  // action: a frame of 1.5 MiB
  CloseFrame,      // action: a close message
  DropMidFrame,    // action: half a frame, then the connection is dropped
};

// "wrong_version", "login_error", "silence", "split_bytes", "negative_tag",
// "oversized_frame", "close", "drop_mid_frame"; nullopt for another text.
std::optional<RelayFault> relayFaultNamed(std::string_view name);
inline bool isRelayFaultMode(RelayFault fault) { return fault <= RelayFault::SplitBytes; }

}  // namespace quillet::backend
