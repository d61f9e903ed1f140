#pragma once

#include <filesystem>

#include "platform/value/Error.h"

namespace quillet::backend {

// The certificate authority of the stand-in cloud's TLS services, kept in a
// directory: made at first start ("ca.pem", "ca-key.pem"), with a server
// certificate for 127.0.0.1 and localhost that it signed ("server.pem",
// "server-key.pem"). Later starts reuse the files. The relay, check-in and
// registration servers all serve with that one certificate; the app trusts
// "ca.pem".
class BackendCertificateAuthority {
 public:
  explicit BackendCertificateAuthority(std::filesystem::path directory) : directory_(std::move(directory)) {}

  // Makes whatever is missing; false with `error` when OpenSSL or the files fail.
  bool ensure(platform::Error* error = nullptr);

  std::filesystem::path caFile() const { return directory_ / "ca.pem"; }
  std::filesystem::path certificateFile() const { return directory_ / "server.pem"; }
  std::filesystem::path keyFile() const { return directory_ / "server-key.pem"; }

 private:
  std::filesystem::path caKeyFile() const { return directory_ / "ca-key.pem"; }

  std::filesystem::path directory_;
};

}  // namespace quillet::backend
