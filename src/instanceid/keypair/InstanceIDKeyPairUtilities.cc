#include "instanceid/keypair/InstanceIDKeyPairUtilities.h"

#include <algorithm>

#include "instanceid/keypair/InstanceIDStringEncoding.h"
#include "instanceid/support/InstanceIDLogger.h"
#include "platform/crypto/Base64.h"
#include "platform/crypto/Digest.h"
#include "platform/keychain/Keychain.h"
#include "platform/value/Format.h"

namespace quillet::instanceid {

std::optional<std::string> InstanceIDSignParams(const platform::RsaKeyPair& privateKey, const std::string& text) {
  const platform::Value::Bytes data(text.begin(), text.end());
  const std::optional<platform::Value::Bytes> signature = InstanceIDSignData(privateKey, data);
  if (signature && !signature->empty()) return InstanceIDWebSafeBase64(*signature);
  iidLogError(platform::format("Failed to encrypt params %@", text));
  return std::nullopt;
}

std::optional<platform::Value::Bytes> InstanceIDSignData(const platform::RsaKeyPair& privateKey,
                                                         const platform::Value::Bytes& data) {
  const size_t blockSize = privateKey.blockSize();
  platform::Value::Bytes output(blockSize);
  platform::Value::Bytes signature;
  // Set once: each operation leaves in it the length it produced.
  size_t outputLength = blockSize;
  for (size_t offset = 0; offset < data.size(); offset += blockSize) {
    const size_t sliceLength = std::min(blockSize, data.size() - offset);
    const std::optional<std::vector<uint8_t>> block =
        privateKey.rawPrivateOperation(std::span(data).subspan(offset, sliceLength));
    if (!block || block->size() > outputLength) {
      iidLogError(platform::format("Failed to sign data, status %d", platform::Keychain::statusParam));
      return std::nullopt;
    }
    std::copy(block->begin(), block->end(), output.begin());
    outputLength = block->size();
    signature.insert(signature.end(), output.begin(), output.begin() + static_cast<ptrdiff_t>(outputLength));
  }
  return signature;
}

std::string InstanceIDWebSafeBase64(const platform::Value::Bytes& data) {
  InstanceIDStringEncoding encoding = InstanceIDStringEncoding::rfc4648Base64WebsafeStringEncoding();
  encoding.setDoPad(false);
  return encoding.encode(data);
}

std::string InstanceIDPlainBase64WithLineBreaks(const platform::Value::Bytes& data) {
  return platform::Base64::encode(data, 64, "\r\n");
}

platform::Value::Bytes InstanceIDSHA1(const platform::Value::Bytes& data) {
  const platform::Digest::Sha1 digest = platform::Digest::sha1(std::span<const uint8_t>(data));
  return platform::Value::Bytes(digest.begin(), digest.end());
}

std::string InstanceIDJoinedText(const std::string& first, const std::vector<std::string>& rest) {
  std::string joined = first;
  for (const std::string& line : rest) joined += platform::format("\n%@", line);
  return joined;
}

}  // namespace quillet::instanceid
