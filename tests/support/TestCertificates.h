#pragma once

#include <filesystem>
#include <string>

namespace quillet::testing {

// A certificate authority and a server certificate it signed, for TLS tests.
// The server certificate names "localhost" and 127.0.0.1 (subjectAltName) and
// is valid from an hour ago for a day. Keys are EC P-256.
struct TestCertificates {
  std::string caPem;               // the CA certificate, PEM
  std::string serverCertPem;       // the server certificate, PEM
  std::string serverKeyPem;        // the server's private key, PEM (PKCS#8, unencrypted)
  std::filesystem::path caFile;    // dir/ca.pem
  std::filesystem::path certFile;  // dir/server.pem
  std::filesystem::path keyFile;   // dir/server-key.pem
};

// Writes the three PEM files into `dir` (made when missing) and returns their
// contents and paths. The keys and certificates are generated once per
// process and reused by later calls. Throws std::runtime_error on failure
// (test code only). Thread-safe.
TestCertificates makeTestCertificates(const std::filesystem::path& dir);

}  // namespace quillet::testing
