#pragma once

#include <asio/ip/tcp.hpp>
#include <asio/ssl.hpp>
#include <cstdint>
#include <string>

#include "platform/runloop/RunLoop.h"
#include "support/TestCertificates.h"

namespace quillet::testing {

// A TLS server on the given loop for the stream tests. Each accepted
// connection shakes hands, writes the greeting, then either echoes what it
// reads or closes (with a TLS close alert, or by dropping the TCP connection).
class TlsTestServer {
 public:
  enum class Mode { Echo, GreetThenCloseNotify, GreetThenDrop };

  TlsTestServer(platform::RunLoop& loop, const TestCertificates& certificates, Mode mode, std::string greeting = "",
                const std::string& address = "127.0.0.1");
  uint16_t port() const { return acceptor_.local_endpoint().port(); }

 private:
  void accept();

  asio::ssl::context context_;
  asio::ip::tcp::acceptor acceptor_;
  Mode mode_;
  std::string greeting_;
};

}  // namespace quillet::testing
