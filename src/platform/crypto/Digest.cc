#include "platform/crypto/Digest.h"
#include "platform/support/Text.h"

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

std::string Digest::hex(std::span<const uint8_t> data) { return hexString(data); }

}  // namespace quillet::platform
