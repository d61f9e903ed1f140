#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace quillet::platform {

// Message digests. Stateless; thread-safe.
class Digest {
 public:
  using Sha1 = std::array<uint8_t, 20>;
  using Md5 = std::array<uint8_t, 16>;
  using Sha256 = std::array<uint8_t, 32>;

  static Sha1 sha1(std::span<const uint8_t> data);
  static Md5 md5(std::span<const uint8_t> data);
  static Sha256 sha256(std::span<const uint8_t> data);
  static Sha1 sha1(std::string_view data) { return sha1(bytesOf(data)); }
  static Md5 md5(std::string_view data) { return md5(bytesOf(data)); }
  static Sha256 sha256(std::string_view data) { return sha256(bytesOf(data)); }

  // Lower-case hexadecimal, two digits a byte.
  static std::string hex(std::span<const uint8_t> data);

 private:
  static std::span<const uint8_t> bytesOf(std::string_view data) {
    return {reinterpret_cast<const uint8_t*>(data.data()), data.size()};
  }
};

}  // namespace quillet::platform
