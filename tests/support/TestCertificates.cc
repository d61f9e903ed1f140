#include "support/TestCertificates.h"

#include <ctime>
#include <fstream>
#include <memory>
#include <mutex>
#include <stdexcept>

#include "support/CertificateMaker.h"

namespace quillet::testing {
namespace {

TestCertificates generate() {
  const std::time_t now = std::time(nullptr);
  KeyPtr caKey = CertificateMaker::makeKey();
  CertPtr ca = CertificateMaker::makeCertificate(caKey.get(), "Quillet Test CA", 1, nullptr, nullptr, true, now - 3600,
                                                 now + 24 * 3600);
  KeyPtr serverKey = CertificateMaker::makeKey();
  CertPtr server = CertificateMaker::makeCertificate(serverKey.get(), "localhost", 2, ca.get(), caKey.get(), false,
                                                     now - 3600, now + 24 * 3600);
  TestCertificates result;
  result.caPem = CertificateMaker::certificatePem(ca.get());
  result.serverCertPem = CertificateMaker::certificatePem(server.get());
  result.serverKeyPem = CertificateMaker::keyPem(serverKey.get());
  return result;
}

void writeFile(const std::filesystem::path& path, const std::string& text) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << text;
  if (!out) throw std::runtime_error("test certificates: writing " + path.string());
}

}  // namespace

TestCertificates makeTestCertificates(const std::filesystem::path& dir) {
  static std::mutex mutex;
  static std::unique_ptr<TestCertificates> cached;
  TestCertificates result;
  {
    std::lock_guard lock(mutex);
    if (!cached) cached = std::make_unique<TestCertificates>(generate());
    result = *cached;
  }
  std::filesystem::create_directories(dir);
  result.caFile = dir / "ca.pem";
  result.certFile = dir / "server.pem";
  result.keyFile = dir / "server-key.pem";
  writeFile(result.caFile, result.caPem);
  writeFile(result.certFile, result.serverCertPem);
  writeFile(result.keyFile, result.serverKeyPem);
  return result;
}

}  // namespace quillet::testing
