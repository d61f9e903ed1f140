#include "TlsTestServer.h"

#include <array>
#include <memory>

#include <asio/write.hpp>

namespace quillet::testing {
namespace {

using SslSocket = asio::ssl::stream<asio::ip::tcp::socket>;

class Session : public std::enable_shared_from_this<Session> {
 public:
  Session(asio::ip::tcp::socket socket, asio::ssl::context& context, TlsTestServer::Mode mode, std::string greeting)
      : ssl_(std::move(socket), context), mode_(mode), greeting_(std::move(greeting)) {}

  void start() {
    ssl_.async_handshake(asio::ssl::stream_base::server, [self = shared_from_this()](const asio::error_code& ec) {
      if (!ec) self->greet();
    });
  }

 private:
  void greet() {
    asio::async_write(ssl_, asio::buffer(greeting_), [self = shared_from_this()](const asio::error_code& ec, size_t) {
      if (ec) return;
      if (self->mode_ == TlsTestServer::Mode::Echo) {
        self->readSome();
      } else if (self->mode_ == TlsTestServer::Mode::GreetThenCloseNotify) {
        self->ssl_.async_shutdown([self](const asio::error_code&) {});
      } else {
        asio::error_code ignored;
        self->ssl_.lowest_layer().close(ignored);
      }
    });
  }

  void readSome() {
    ssl_.async_read_some(asio::buffer(chunk_), [self = shared_from_this()](const asio::error_code& ec, size_t n) {
      if (ec) return;
      asio::async_write(self->ssl_, asio::buffer(self->chunk_.data(), n),
                        [self](const asio::error_code& writeError, size_t) {
                          if (!writeError) self->readSome();
                        });
    });
  }

  SslSocket ssl_;
  TlsTestServer::Mode mode_;
  std::string greeting_;
  std::array<uint8_t, 7000> chunk_{};
};

}  // namespace

TlsTestServer::TlsTestServer(platform::RunLoop& loop, const TestCertificates& certificates, Mode mode,
                             std::string greeting, const std::string& address)
    : context_(asio::ssl::context::tls_server),
      acceptor_(loop.io(), asio::ip::tcp::endpoint(asio::ip::make_address(address), 0)),
      mode_(mode),
      greeting_(std::move(greeting)) {
  context_.use_certificate_chain(asio::buffer(certificates.serverCertPem));
  context_.use_private_key(asio::buffer(certificates.serverKeyPem), asio::ssl::context::pem);
  accept();
}

void TlsTestServer::accept() {
  acceptor_.async_accept([this](const asio::error_code& ec, asio::ip::tcp::socket socket) {
    if (ec) return;
    std::make_shared<Session>(std::move(socket), context_, mode_, greeting_)->start();
    accept();
  });
}

}  // namespace quillet::testing
