#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace quillet::backend {

// What a registration request proves about the instance's key pair, checked
// the way the client makes it: "pub2" is the standard Base64 of the PKCS#1
// RSAPublicKey DER with CR LF after every 64 characters; "sig" is the
// websafe Base64 (no padding) of the raw private-key operation applied to
// each slice of up to one block of the signed text (the bundle identifier,
// "\n", pub2 as sent); "appid" is the key's identity. Stateless; thread-safe.
class RegistrationKeyProof {
 public:
  // True when all three agree; else false with a one-line reason.
  static bool verify(const std::string& bundleIdentifier, const std::string& appId, const std::string& pub2,
                     const std::string& sig, std::string* reason);

  // The identity of a public key: SHA-1 of the DER, first byte 0x70 | (b & 0x0f),
  // first 8 bytes, websafe Base64 without padding (11 characters).
  static std::string appIdentity(std::span<const uint8_t> publicKeyDer);

  // Websafe Base64 ("-" and "_"), without padding.
  static std::string websafeEncode(std::span<const uint8_t> data);
  // Its inverse; nullopt for other characters or an impossible length.
  static std::optional<std::vector<uint8_t>> websafeDecode(const std::string& text);
};

}  // namespace quillet::backend
