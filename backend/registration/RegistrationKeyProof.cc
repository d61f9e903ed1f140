#include "backend/registration/RegistrationKeyProof.h"

#include <algorithm>

#include "platform/crypto/Base64.h"
#include "platform/crypto/Digest.h"
#include "platform/crypto/RsaPublicKey.h"

namespace quillet::backend {

std::string RegistrationKeyProof::websafeEncode(std::span<const uint8_t> data) {
  std::string text = platform::Base64::encode(data);
  while (!text.empty() && text.back() == '=') text.pop_back();
  std::replace(text.begin(), text.end(), '+', '-');
  std::replace(text.begin(), text.end(), '/', '_');
  return text;
}

std::optional<std::vector<uint8_t>> RegistrationKeyProof::websafeDecode(const std::string& text) {
  // The standard alphabet's own characters are not websafe: refuse them.
  if (text.find_first_of("+/=") != std::string::npos || text.size() % 4 == 1) return std::nullopt;
  std::string standard = text;
  std::replace(standard.begin(), standard.end(), '-', '+');
  std::replace(standard.begin(), standard.end(), '_', '/');
  standard.append((4 - standard.size() % 4) % 4, '=');
  return platform::Base64::decode(standard);
}

std::string RegistrationKeyProof::appIdentity(std::span<const uint8_t> publicKeyDer) {
  auto digest = platform::Digest::sha1(publicKeyDer);
  digest[0] = static_cast<uint8_t>(0x70 | (digest[0] & 0x0f));
  return websafeEncode(std::span<const uint8_t>(digest.data(), 8));
}

bool RegistrationKeyProof::verify(const std::string& bundleIdentifier, const std::string& appId,
                                  const std::string& pub2, const std::string& sig, std::string* reason) {
  auto fail = [&](const char* what) {
    if (reason) *reason = what;
    return false;
  };
  const auto der = platform::Base64::decode(pub2, true);
  if (!der) return fail("pub2 is not Base64");
  if (platform::Base64::encode(*der, 64, "\r\n") != pub2) return fail("pub2 is not in lines of 64 with CR LF");
  const auto key = platform::RsaPublicKey::fromPkcs1Der(*der);
  if (!key) return fail("pub2 is not an RSA public key");
  if (appIdentity(*der) != appId) return fail("appid is not the identity of pub2");

  const auto signature = websafeDecode(sig);
  if (!signature) return fail("sig is not websafe Base64 without padding");
  std::string signedText = bundleIdentifier;
  signedText.append("\n").append(pub2);
  const size_t block = key->blockSize();
  const size_t slices = (signedText.size() + block - 1) / block;
  if (signature->size() != slices * block) return fail("sig has the wrong length");
  for (size_t i = 0; i < slices; ++i) {
    const auto opened = key->rawPublicOperation(std::span(signature->data() + i * block, block));
    if (!opened) return fail("sig does not verify");
    const size_t length = std::min(block, signedText.size() - i * block);
    std::vector<uint8_t> expected(block - length, 0);
    expected.insert(expected.end(), signedText.begin() + static_cast<std::ptrdiff_t>(i * block),
                    signedText.begin() + static_cast<std::ptrdiff_t>(i * block + length));
    if (*opened != expected) return fail("sig does not verify");
  }
  return true;
}

}  // namespace quillet::backend
