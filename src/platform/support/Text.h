#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace quillet::platform {

// `text` without leading and trailing blanks (spaces, tabs, line ends).
std::string trim(std::string_view text);

// Two hexadecimal digits a byte, lower-case unless `upperCase`.
std::string hexString(std::span<const uint8_t> bytes, bool upperCase = false);

}  // namespace quillet::platform
