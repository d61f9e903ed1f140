#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/crypto/RsaKeyPair.h"
#include "platform/value/Value.h"

namespace quillet::instanceid {

// The routines of the key pair: signing, the two Base64 forms, the digest and
// the joining of signed text. Stateless; safe from any thread.

// The websafe text (no padding) of InstanceIDSignData over the UTF-8 bytes of
// `text`; nullopt (and "Failed to encrypt params %@") when no signature came out.
std::optional<std::string> InstanceIDSignParams(const platform::RsaKeyPair& privateKey, const std::string& text);

// The raw private-key operation, no padding and no hashing, on each slice of
// at most one block of `data`; the blocks joined. Empty for no data; nullopt
// (and "Failed to sign data, status %d") when an operation fails.
std::optional<platform::Value::Bytes> InstanceIDSignData(const platform::RsaKeyPair& privateKey,
                                                         const platform::Value::Bytes& data);

// Websafe Base64 ("-", "_") without padding.
std::string InstanceIDWebSafeBase64(const platform::Value::Bytes& data);

// Standard Base64 with "=" padding, broken into 64-character lines by CR LF.
std::string InstanceIDPlainBase64WithLineBreaks(const platform::Value::Bytes& data);

// The 20-byte SHA-1 digest.
platform::Value::Bytes InstanceIDSHA1(const platform::Value::Bytes& data);

// `first`, then "\n" and each of `rest` in order.
std::string InstanceIDJoinedText(const std::string& first, const std::vector<std::string>& rest);

}  // namespace quillet::instanceid
