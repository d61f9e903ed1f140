#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quillet::http {

// Certificates for the policy's tests, made once per process with EC P-256
// keys, valid from 2020 to 2040. Leaves name "localhost" and 127.0.0.1.
//   root -> intermediate -> leaf      the chain under test
//   otherRoot -> otherLeaf            an unrelated authority
//   selfSigned                        a leaf that signs itself
struct TestChains {
  using Bytes = std::vector<uint8_t>;
  Bytes root, intermediate, leaf, otherRoot, otherLeaf, selfSigned;
  // For a TLS server: the leaf then the intermediate, and the leaf's key (PEM).
  std::string leafChainPem, leafKeyPem;

  static const TestChains& shared();
};

}  // namespace quillet::http
