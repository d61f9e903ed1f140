#include "platform/crypto/Digest.h"

#include <openssl/evp.h>

namespace quillet::platform {
namespace {

template <size_t N>
std::array<uint8_t, N> digest(const EVP_MD* md, std::span<const uint8_t> data) {
  std::array<uint8_t, N> out{};
  unsigned int size = 0;
  // One-shot digests of the default provider do not fail for in-memory input.
  EVP_Digest(data.data(), data.size(), out.data(), &size, md, nullptr);
  return out;
}

}  // namespace

Digest::Sha1 Digest::sha1(std::span<const uint8_t> data) { return digest<20>(EVP_sha1(), data); }
Digest::Md5 Digest::md5(std::span<const uint8_t> data) { return digest<16>(EVP_md5(), data); }
Digest::Sha256 Digest::sha256(std::span<const uint8_t> data) { return digest<32>(EVP_sha256(), data); }

std::string Digest::hex(std::span<const uint8_t> data) {
  static constexpr char kHex[] = "0123456789abcdef";
  std::string out;
  out.reserve(data.size() * 2);
  for (uint8_t b : data) {
    out.push_back(kHex[b >> 4]);
    out.push_back(kHex[b & 0x0f]);
  }
  return out;
}

}  // namespace quillet::platform
