#include "backend/relay/RelayFault.h"

namespace quillet::backend {

std::optional<RelayFault> relayFaultNamed(std::string_view name) {
  if (name == "wrong_version") return RelayFault::WrongVersion;
  if (name == "login_error") return RelayFault::LoginError;
  if (name == "silence") return RelayFault::Silence;
  if (name == "split_bytes") return RelayFault::SplitBytes;
  if (name == "negative_tag") return RelayFault::NegativeTag;
  if (name == "oversized_frame") return RelayFault::OversizedFrame;
  if (name == "close") return RelayFault::CloseFrame;
  if (name == "drop_mid_frame") return RelayFault::DropMidFrame;
  return std::nullopt;
}

}  // namespace quillet::backend
