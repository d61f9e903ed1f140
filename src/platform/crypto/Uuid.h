#pragma once

#include <string>

namespace quillet::platform {

// A new random (version 4) UUID in the phone's text form: 36 characters,
// upper-case hexadecimal in groups of 8-4-4-4-12, such as
// "E621E1F8-C36C-495A-93FC-0C247A3E6E5F". Drawn from the system's
// cryptographic random source. Any thread.
std::string uuidString();

// True for text in that form (any hexadecimal case).
bool isUuidString(const std::string& text);

}  // namespace quillet::platform
