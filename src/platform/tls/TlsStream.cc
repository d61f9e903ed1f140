#include "platform/tls/TlsStream.h"

#include <openssl/ssl.h>
#include <openssl/x509_vfy.h>
#include <openssl/x509v3.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include <asio/connect.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/ssl.hpp>
#include <asio/write.hpp>

#include "platform/log/Log.h"
#include "platform/runloop/RunLoop.h"

namespace quillet::platform {

// The connection itself. Asynchronous handlers keep it alive through a
// shared pointer, so that a TlsStream can be destroyed while operations are
// still pending; posted events hold it weakly and are dropped once the
// stream is closed (the delegate is cleared then).
class TlsStream::Engine : public std::enable_shared_from_this<Engine> {
 public:
  Engine(RunLoop& loop, Options options)
      : loop_(loop),
        options_(std::move(options)),
        context_(asio::ssl::context::tls_client),
        resolver_(loop.io()),
        ssl_(loop.io(), context_) {}

  TlsStream* owner = nullptr;
  TlsStreamDelegate* delegate = nullptr;
  Status status = Status::NotOpen;
  std::optional<Error> error;

  bool open(const std::string& host, uint16_t port);
  void close();
  bool hasBytesAvailable() const { return unread() > 0 && (status == Status::Open || status == Status::AtEnd); }
  bool hasSpaceAvailable();
  ptrdiff_t read(uint8_t* buffer, size_t maxLength);
  ptrdiff_t write(const uint8_t* data, size_t length);

 private:
  size_t unread() const { return inbound_.size() - inboundPos_; }
  size_t outgoingRoom() const {
    size_t used = sending_.size() + pending_.size();
    return used >= options_.outgoingCapacity ? 0 : options_.outgoingCapacity - used;
  }
  bool configure(const std::string& host);
  void onResolved(const asio::error_code& ec, const asio::ip::tcp::resolver::results_type& results);
  void onConnected(const asio::error_code& ec);
  void onHandshake(const asio::error_code& ec);
  void startReading();
  void onRead(const asio::error_code& ec, size_t count);
  void startWriting();
  void onWritten(const asio::error_code& ec);
  void fail(ErrorCode code, const std::string& message);
  void post(TlsStreamEvent event);
  void deliver(TlsStreamEvent event);

  RunLoop& loop_;
  Options options_;
  asio::ssl::context context_;
  asio::ip::tcp::resolver resolver_;
  asio::ssl::stream<asio::ip::tcp::socket> ssl_;
  std::string host_;

  std::vector<uint8_t> inbound_;  // received; the first inboundPos_ bytes were read already
  size_t inboundPos_ = 0;
  std::array<uint8_t, 16 * 1024> chunk_{};
  bool reading_ = false;
  bool bytesEventWaiting_ = false;

  std::vector<uint8_t> sending_;  // handed to the socket, in flight
  std::vector<uint8_t> pending_;  // accepted by write(), waiting for the flight to land
  bool writing_ = false;
  bool spaceWanted_ = false;
};

bool TlsStream::Engine::open(const std::string& host, uint16_t port) {
  if (status != Status::NotOpen) return false;
  status = Status::Opening;
  host_ = host;
  if (!configure(host)) return true;
  resolver_.async_resolve(
      host, std::to_string(port),
      [self = shared_from_this()](const asio::error_code& ec, const asio::ip::tcp::resolver::results_type& results) {
        self->onResolved(ec, results);
      });
  return true;
}

// Trust anchors, peer verification and the name the certificate must carry.
bool TlsStream::Engine::configure(const std::string& host) {
  asio::error_code ec;
  SSL* ssl = ssl_.native_handle();
  // The stream's SSL object exists already, so its own settings are changed, not the context's.
  SSL_set_min_proto_version(ssl, TLS1_2_VERSION);
  if (!options_.verifyPeer) {
    SSL_set_verify(ssl, SSL_VERIFY_NONE, nullptr);
    return true;
  }
  if (options_.caFile.empty()) {
    context_.set_default_verify_paths(ec);
  } else {
    context_.load_verify_file(options_.caFile.string(), ec);
  }
  if (ec) {
    fail(kBadConfiguration,
         "Could not load the trusted certificates from " + options_.caFile.string() + ": " + ec.message());
    return false;
  }
  X509_VERIFY_PARAM* param = SSL_get0_param(ssl);
  asio::error_code notAddress;
  asio::ip::make_address(host, notAddress);
  if (!notAddress) {
    X509_VERIFY_PARAM_set1_ip_asc(param, host.c_str());
  } else {
    X509_VERIFY_PARAM_set_hostflags(param, X509_CHECK_FLAG_NO_PARTIAL_WILDCARDS);
    SSL_set1_host(ssl, host.c_str());
    SSL_set_tlsext_host_name(ssl, host.c_str());
  }
  SSL_set_verify(ssl, SSL_VERIFY_PEER, nullptr);
  return true;
}

void TlsStream::Engine::onResolved(const asio::error_code& ec, const asio::ip::tcp::resolver::results_type& results) {
  if (status != Status::Opening) return;
  if (ec) {
    fail(kResolveFailed, "Could not resolve " + host_ + ": " + ec.message());
    return;
  }
  asio::async_connect(ssl_.lowest_layer(), results,
                      [self = shared_from_this()](const asio::error_code& connectError, const auto&) {
                        self->onConnected(connectError);
                      });
}

void TlsStream::Engine::onConnected(const asio::error_code& ec) {
  if (status != Status::Opening) return;
  if (ec) {
    fail(kConnectFailed, "Could not connect to " + host_ + ": " + ec.message());
    return;
  }
  asio::error_code ignored;
  ssl_.lowest_layer().set_option(asio::ip::tcp::no_delay(true), ignored);
  ssl_.async_handshake(
      asio::ssl::stream_base::client,
      [self = shared_from_this()](const asio::error_code& handshakeError) { self->onHandshake(handshakeError); });
}

void TlsStream::Engine::onHandshake(const asio::error_code& ec) {
  if (status != Status::Opening) return;
  if (ec) {
    long verify = SSL_get_verify_result(ssl_.native_handle());
    if (options_.verifyPeer && verify != X509_V_OK) {
      fail(kPeerUntrusted, "The certificate of " + host_ + " is not trusted: " + X509_verify_cert_error_string(verify));
    } else {
      fail(kHandshakeFailed, "The secure connection to " + host_ + " failed: " + ec.message());
    }
    return;
  }
  status = Status::Open;
  post(TlsStreamEvent::OpenCompleted);
  post(TlsStreamEvent::HasSpaceAvailable);
  startReading();
}

void TlsStream::Engine::startReading() {
  if (reading_ || status != Status::Open || unread() >= options_.incomingCapacity) return;
  reading_ = true;
  ssl_.async_read_some(asio::buffer(chunk_), [self = shared_from_this()](const asio::error_code& ec, size_t count) {
    self->onRead(ec, count);
  });
}

void TlsStream::Engine::onRead(const asio::error_code& ec, size_t count) {
  reading_ = false;
  if (status != Status::Open) return;
  if (count > 0) {
    if (inboundPos_ > 0 && inboundPos_ == inbound_.size()) {
      inbound_.clear();
      inboundPos_ = 0;
    }
    inbound_.insert(inbound_.end(), chunk_.begin(), chunk_.begin() + static_cast<ptrdiff_t>(count));
    if (!bytesEventWaiting_) {
      bytesEventWaiting_ = true;
      post(TlsStreamEvent::HasBytesAvailable);
    }
  }
  if (ec) {
    // A peer that closes the connection without a TLS close alert still ends the stream.
    if (ec == asio::error::eof || ec == asio::ssl::error::stream_truncated) {
      status = Status::AtEnd;
      post(TlsStreamEvent::EndEncountered);
    } else {
      fail(kReadFailed, "Reading from " + host_ + " failed: " + ec.message());
    }
    return;
  }
  startReading();
}

ptrdiff_t TlsStream::Engine::read(uint8_t* buffer, size_t maxLength) {
  if (status == Status::Opening) return 0;
  if (status != Status::Open && status != Status::AtEnd) return -1;
  size_t count = std::min(maxLength, unread());
  if (count > 0) std::memcpy(buffer, inbound_.data() + inboundPos_, count);
  inboundPos_ += count;
  if (inboundPos_ == inbound_.size()) {
    inbound_.clear();
    inboundPos_ = 0;
  } else if (inboundPos_ >= options_.incomingCapacity) {
    inbound_.erase(inbound_.begin(), inbound_.begin() + static_cast<ptrdiff_t>(inboundPos_));
    inboundPos_ = 0;
  }
  startReading();
  return static_cast<ptrdiff_t>(count);
}

bool TlsStream::Engine::hasSpaceAvailable() {
  if (status != Status::Open) return false;
  if (outgoingRoom() > 0) return true;
  spaceWanted_ = true;
  return false;
}

ptrdiff_t TlsStream::Engine::write(const uint8_t* data, size_t length) {
  if (status == Status::Opening) return 0;
  if (status != Status::Open) return -1;
  size_t count = std::min(length, outgoingRoom());
  if (count < length) spaceWanted_ = true;
  pending_.insert(pending_.end(), data, data + count);
  startWriting();
  return static_cast<ptrdiff_t>(count);
}

void TlsStream::Engine::startWriting() {
  if (writing_ || pending_.empty() || status != Status::Open) return;
  sending_.swap(pending_);
  pending_.clear();
  writing_ = true;
  asio::async_write(ssl_, asio::buffer(sending_),
                    [self = shared_from_this()](const asio::error_code& ec, size_t) { self->onWritten(ec); });
}

void TlsStream::Engine::onWritten(const asio::error_code& ec) {
  writing_ = false;
  // After the peer's end, or once closed or failed, what is left to send has nowhere to go.
  if (status != Status::Open) return;
  if (ec) {
    fail(kWriteFailed, "Writing to " + host_ + " failed: " + ec.message());
    return;
  }
  sending_.clear();
  startWriting();
  if (spaceWanted_ && outgoingRoom() > 0) {
    spaceWanted_ = false;
    post(TlsStreamEvent::HasSpaceAvailable);
  }
}

void TlsStream::Engine::fail(ErrorCode code, const std::string& message) {
  if (status == Status::Closed || status == Status::Error) return;
  status = Status::Error;
  error = Error::withDescription(kErrorDomain, code, message);
  Log::write("TlsStream: " + message);
  asio::error_code ignored;
  resolver_.cancel();
  ssl_.lowest_layer().close(ignored);
  post(TlsStreamEvent::ErrorOccurred);
}

void TlsStream::Engine::close() {
  delegate = nullptr;
  if (status == Status::Closed) return;
  status = Status::Closed;
  asio::error_code ignored;
  resolver_.cancel();
  ssl_.lowest_layer().close(ignored);
  pending_.clear();
  inbound_.clear();
  inboundPos_ = 0;
}

void TlsStream::Engine::post(TlsStreamEvent event) {
  loop_.post([weak = weak_from_this(), event] {
    if (auto self = weak.lock()) self->deliver(event);
  });
}

void TlsStream::Engine::deliver(TlsStreamEvent event) {
  if (event == TlsStreamEvent::HasBytesAvailable) bytesEventWaiting_ = false;
  if (delegate == nullptr || owner == nullptr) return;
  delegate->streamHandleEvent(*owner, event);
}

TlsStream::TlsStream(RunLoop& loop, Options options) : engine_(std::make_shared<Engine>(loop, std::move(options))) {
  engine_->owner = this;
}

TlsStream::~TlsStream() {
  engine_->close();
  engine_->owner = nullptr;
}

void TlsStream::setDelegate(TlsStreamDelegate* delegate) { engine_->delegate = delegate; }
bool TlsStream::open(const std::string& host, uint16_t port) { return engine_->open(host, port); }
void TlsStream::close() { engine_->close(); }
TlsStream::Status TlsStream::status() const { return engine_->status; }
const std::optional<Error>& TlsStream::error() const { return engine_->error; }
bool TlsStream::hasBytesAvailable() const { return engine_->hasBytesAvailable(); }
bool TlsStream::hasSpaceAvailable() { return engine_->hasSpaceAvailable(); }
ptrdiff_t TlsStream::read(uint8_t* buffer, size_t maxLength) { return engine_->read(buffer, maxLength); }
ptrdiff_t TlsStream::write(const uint8_t* data, size_t length) { return engine_->write(data, length); }

}  // namespace quillet::platform
