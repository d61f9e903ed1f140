#include "backend/relay/RelaySession.h"

#include <asio/write.hpp>
#include "messaging/schema/MSGProto.h"

#include "messaging/schema/MSGProtoTag.h"
#include "messaging/schema/MSGUtilities.h"
#include "messaging/socket/MSGCodedInputStream.h"
#include "platform/log/Log.h"

namespace quillet::backend {

using namespace quillet::messaging;

namespace {

constexpr uint8_t kWrongVersion = 39;
constexpr size_t kOversizedBody = 1536 * 1024;

std::string frameBytes(uint8_t tag, const std::string& body) {
  std::string out(1, static_cast<char>(tag));
  uint8_t length[5];
  uint8_t* end = MSGCodedOutputStream::WriteVarint32ToArray(static_cast<uint32_t>(body.size()), length);
  out.append(reinterpret_cast<char*>(length), static_cast<size_t>(end - length));
  out.append(body);
  return out;
}

}  // namespace

RelaySession::RelaySession(asio::ip::tcp::socket socket, asio::ssl::context& context, RelayMailbox& mailbox,
                           std::shared_ptr<platform::Clock> clock, double heartbeatIntervalSeconds, uint64_t sessionId)
    : ssl_(std::move(socket), context),
      mailbox_(mailbox),
      clock_(std::move(clock)),
      heartbeatInterval_(heartbeatIntervalSeconds),
      sessionId_(sessionId),
      heartbeat_(ssl_.get_executor()) {}

void RelaySession::start() {
  ssl_.async_handshake(asio::ssl::stream_base::server, [self = shared_from_this()](const asio::error_code& ec) {
    if (ec) return;
    const bool wrong = self->mailbox_.hasMode(RelayFault::WrongVersion);
    self->writeRaw(std::string(1, static_cast<char>(wrong ? kWrongVersion : kMSGVersion)));
    self->readSome();
  });
}

void RelaySession::readSome() {
  ssl_.async_read_some(asio::buffer(chunk_), [self = shared_from_this()](const asio::error_code& ec, size_t n) {
    if (ec || self->closed_) {
      self->close();
      return;
    }
    self->input_.append(reinterpret_cast<const char*>(self->chunk_.data()), n);
    self->consume();
    if (!self->closed_) self->readSome();
  });
}

void RelaySession::consume() {
  if (!versionRead_ && !input_.empty()) {
    versionRead_ = true;
    if (static_cast<uint8_t>(input_[0]) != kMSGVersion) {
      platform::Log::write("relay: wrong version byte");
      close();
      return;
    }
    input_.erase(0, 1);
  }
  while (!closed_ && !input_.empty()) {
    MSGCodedInputStream stream({reinterpret_cast<const uint8_t*>(input_.data()), input_.size()});
    int8_t tag = 0;
    int32_t length = 0;
    std::span<const uint8_t> body;
    if (!stream.readTag(&tag) || !stream.readLength(&length)) return;
    if (tag < 0 || length < 0 || length > (1 << 20)) {
      platform::Log::write("relay: bad frame header");
      close();
      return;
    }
    if (!stream.readDataWithLength(static_cast<uint32_t>(length), &body)) return;
    std::string bytes(body.begin(), body.end());
    input_.erase(0, stream.offset());
    if (!handleFrame(tag, bytes)) close();
  }
}

bool RelaySession::handleFrame(int tag, const std::string& body) {
  ++inStreamId_;
  if (!signedIn_) {
    if (loginRefused_) return true;  // ignored until the device gives up
    if (tag != kMSGProtoTagLoginRequest) {
      platform::Log::writef("relay: frame with tag %d before login", tag);
      return false;
    }
    return handleLogin(body);
  }
  auto proto = MSGUtilities::protoForTag(tag);
  if (!proto || !proto->ParseFromString(body)) {
    platform::Log::writef("relay: malformed frame with tag %d", tag);
    return false;
  }
  const int32_t position = MSGUtilities::lastStreamIdForProto(*proto);
  if (position != -1) mailbox_.confirmUpTo(sessionId_, position);
  auto persistentId = MSGUtilities::persistentIdForProto(*proto);
  mailbox_.record({device_, tag, persistentId.value_or(""), body});
  switch (tag) {
    case kMSGProtoTagHeartbeatPing:
      if (!mailbox_.hasMode(RelayFault::Silence)) {
        RelayHeartbeatAck ack;
        send(ack);
      }
      break;
    case kMSGProtoTagClose:
      return false;
    case kMSGProtoTagDataMessageStanza:
      if (persistentId && !persistentId->empty()) {
        RelaySelectiveAck selective;
        selective.add_id_parray(*persistentId);
        RelayIqStanza iq;
        iq.set_type(RelayIqStanza::IQ_TYPE_1);
        iq.set_id_p("");
        iq.mutable_extension()->set_id_p(kMSGExtensionSelectiveAck);
        iq.mutable_extension()->set_data_p(selective.SerializeAsString());
        send(iq);
      }
      break;
    default:
      break;  // heartbeat acks, stream acks: only their position counts
  }
  return true;
}

bool RelaySession::handleLogin(const std::string& body) {
  RelayLoginRequest request;
  if (!request.ParseFromString(body)) {
    platform::Log::write("relay: malformed login request");
    return false;
  }
  mailbox_.record({request.user(), kMSGProtoTagLoginRequest, "", body});
  RelayLoginResponse response;
  response.set_id_p(request.id_p());
  const bool good = request.user() == request.resource() &&
                    mailbox_.checkCredentials(request.user(), request.authtoken()) &&
                    !mailbox_.hasMode(RelayFault::LoginError);
  if (!good) {
    loginRefused_ = true;
    response.mutable_error()->set_code(401);
    response.mutable_error()->set_message("login refused");
    send(response);
    return true;
  }
  signedIn_ = true;
  device_ = request.user();
  mailbox_.confirmIds(device_,
                      {request.receivedpersistentidarray().begin(), request.receivedpersistentidarray().end()});
  response.set_jid(device_ + "@" + request.domain());
  response.set_servertimestamp(clock_->wallMilliseconds());
  response.set_laststreamidreceived(inStreamId_);
  send(response);
  deliverHeld();
  scheduleHeartbeat();
  return true;
}

void RelaySession::deliverHeld() {
  if (!signedIn_ || closed_) return;
  for (auto& held : mailbox_.undelivered(device_, sessionId_)) {
    RelayDataMessageStanza stanza = held.stanza;
    send(stanza);
    mailbox_.markDelivered(held.persistentId, sessionId_, outStreamId_);
  }
}

void RelaySession::perform(RelayFault action) {
  if (closed_) return;
  switch (action) {
    case RelayFault::NegativeTag:
      writeRaw(std::string("\x80\x01", 2) + std::string(1, '\0'));
      break;
    case RelayFault::OversizedFrame:
      writeRaw(frameBytes(kMSGProtoTagDataMessageStanza, std::string(kOversizedBody, 'o')));
      break;
    case RelayFault::CloseFrame: {
      RelayClose close;
      send(close);
      break;
    }
    case RelayFault::DropMidFrame: {
      RelayHeartbeatPing ping;
      ping.set_status(123456789);
      std::string bytes = frameBytes(kMSGProtoTagHeartbeatPing, ping.SerializeAsString());
      writeRaw(bytes.substr(0, bytes.size() / 2), true);
      break;
    }
    default:
      break;  // modes are not actions
  }
}

void RelaySession::send(messaging::MSGProtoMessage& message) {
  ++outStreamId_;
  MSGUtilities::setLastStreamIdForProto(message, inStreamId_);
  writeRaw(frameBytes(static_cast<uint8_t>(MSGUtilities::tagForProto(message)), message.SerializePartialAsString()));
}

void RelaySession::writeRaw(std::string bytes, bool thenDrop) {
  if (mailbox_.hasMode(RelayFault::SplitBytes) && bytes.size() > 1) {
    for (size_t i = 0; i < bytes.size(); ++i) {
      writes_.push_back({bytes.substr(i, 1), thenDrop && i + 1 == bytes.size()});
    }
  } else {
    writes_.push_back({std::move(bytes), thenDrop});
  }
  if (!writing_) writeNext();
}

void RelaySession::writeNext() {
  if (writes_.empty() || closed_) {
    writing_ = false;
    return;
  }
  writing_ = true;
  asio::async_write(ssl_, asio::buffer(writes_.front().bytes),
                    [self = shared_from_this()](const asio::error_code& ec, size_t) {
                      if (ec) {
                        self->close();
                        return;
                      }
                      const bool drop = self->writes_.front().thenDrop;
                      self->writes_.pop_front();
                      if (drop) {
                        self->close();
                        return;
                      }
                      self->writeNext();
                    });
}

void RelaySession::scheduleHeartbeat() {
  if (heartbeatInterval_ <= 0 || closed_) return;
  heartbeat_.expires_after(std::chrono::milliseconds(static_cast<int64_t>(heartbeatInterval_ * 1000)));
  heartbeat_.async_wait([self = shared_from_this()](const asio::error_code& ec) {
    if (ec || self->closed_) return;
    RelayHeartbeatPing ping;
    self->send(ping);
    self->scheduleHeartbeat();
  });
}

void RelaySession::close() {
  if (closed_) return;
  closed_ = true;
  heartbeat_.cancel();
  asio::error_code ignored;
  ssl_.lowest_layer().close(ignored);
}

}  // namespace quillet::backend
