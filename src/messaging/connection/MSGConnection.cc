#include "messaging/connection/MSGConnection.h"

#include <cstdio>
#include <cstdlib>

#include "messaging/schema/MSGLoginRequestBuilder.h"
#include "messaging/schema/MSGUtilities.h"
#include "platform/log/Log.h"

namespace quillet::messaging {

namespace {
constexpr const char* kOpSendHeartbeatPing = "sendHeartbeatPing";
constexpr const char* kOpConnectionTimedOut = "connectionTimedOut";
}  // namespace

MSGConnection::MSGConnection(std::string authId, std::string token, std::string host, uint16_t port,
                             platform::RunLoop& runLoop, std::weak_ptr<MSGRmqManager> rmq2Manager,
                             std::weak_ptr<MSGConnectionResender> msgManager,
                             MSGSecureSocket::StreamFactory streamFactory)
    : authId_(std::move(authId)),
      token_(std::move(token)),
      host_(std::move(host)),
      port_(port),
      runLoop_(runLoop),
      rmq2Manager_(std::move(rmq2Manager)),
      dataMessageManager_(std::move(msgManager)),
      streamFactory_(std::move(streamFactory)) {
  // Ids whose acknowledgement did not reach the server last time go again.
  if (auto manager = rmq2Manager_.lock()) unackedS2dIds_ = manager->unackedS2dRmqIds();
}

MSGConnection::~MSGConnection() {
  runLoop_.cancelPreviousPerformRequests(this);
  if (socket_) {
    socket_->setDelegate(nullptr);
    socket_->disconnect();
  }
}

std::string MSGConnection::description() const {
  char text[64];
  std::snprintf(text, sizeof text, ", port: %lu, stream id in: %d, stream id out: %d",
                static_cast<unsigned long>(port_), inStreamId_, outStreamId_);
  std::string result = "host: ";
  result.append(host_);
  result.append(text);
  return result;
}

int32_t MSGConnection::currentNetworkType() const {
  if (networkType_ == 1) return 1;
  if (networkType_ == 2) return 0;
  return -1;
}

void MSGConnection::signIn() {
  if (state_ != kStateDisconnected) return;
  if (socket_) {
    // The old socket may still be on the call stack of one of its events.
    runLoop_.post([old = std::shared_ptr<MSGSecureSocket>(std::move(socket_))] {});
  }
  socket_ = std::make_unique<MSGSecureSocket>(streamFactory_);
  socket_->setDelegate(this);
  state_ = kStateConnecting;
  socket_->connectToHost(host_, port_, runLoop_);
}

void MSGConnection::secureSocketDidConnect(MSGSecureSocket&) {
  state_ = kStateLoggingIn;
  lastStreamIdAcked_ = 0;
  inStreamId_ = 0;
  outStreamId_ = 0;
  resetUnconfirmedAcks();
  sendLoginRequest(authId_, token_);
}

void MSGConnection::resetUnconfirmedAcks() {
  for (auto& [streamId, ids] : ackedS2dMap_) unackedS2dIds_.insert(unackedS2dIds_.end(), ids.begin(), ids.end());
  ackedS2dMap_.clear();
}

void MSGConnection::sendLoginRequest(const std::string& authId, const std::string& token) {
  d2sInfos_.clear();  // stream ids do not survive a connection
  RelayLoginRequest request = MSGLoginRequestBuilder::loginRequest(authId, token, currentNetworkType(), unackedS2dIds_);
  sendProto(request);
}

void MSGConnection::sendProto(MSGProtoMessage& proto) {
  const int8_t tag = MSGUtilities::tagForProto(proto);
  const State required = tag == kMSGProtoTagLoginRequest ? kStateLoggingIn : kStateSignedIn;
  if (state_ != required || !socket_) return;
  willSendProto(proto);
  std::string bytes = proto.SerializePartialAsString();
  socket_->sendData(std::vector<uint8_t>(bytes.begin(), bytes.end()), tag, MSGUtilities::persistentIdForProto(proto));
}

void MSGConnection::willSendProto(MSGProtoMessage& proto) {
  ++outStreamId_;
  auto persistentId = MSGUtilities::persistentIdForProto(proto);
  if (persistentId && !persistentId->empty()) d2sInfos_.push_back({outStreamId_, *persistentId});
  if (inStreamId_ > lastStreamIdAcked_) {
    MSGUtilities::setLastStreamIdForProto(proto, inStreamId_);
    lastStreamIdAcked_ = inStreamId_;
  }
  if (!unackedS2dIds_.empty()) {
    ackedS2dMap_[std::to_string(outStreamId_)] = std::move(unackedS2dIds_);
    unackedS2dIds_.clear();
  }
}

void MSGConnection::sendOnConnectOrDrop(const MSGProtoMessage& proto) {
  if (state_ == kStateSignedIn) {
    std::unique_ptr<MSGProtoMessage> copy(proto.New());
    copy->CopyFrom(proto);
    sendProto(*copy);
    return;
  }
  std::unique_ptr<MSGProtoMessage> held(proto.New());
  held->CopyFrom(proto);
  sendOnConnectMessages_.push_back(std::move(held));
}

void MSGConnection::secureSocketDidReceiveData(MSGSecureSocket&, std::span<const uint8_t> data, int8_t tag) {
  if (tag < 0) return;
  auto proto = MSGUtilities::protoForTag(tag);
  if (!proto) {
    // No type: the frame is dropped without being counted.
    platform::Log::writef("Invalid tag %d for proto", int(tag));
    return;
  }
  if (!proto->ParseFromArray(data.data(), static_cast<int>(data.size()))) {
    platform::Log::writef("Dropped a malformed frame with tag %d", int(tag));
    return;
  }
  const State required = tag == kMSGProtoTagLoginResponse ? kStateLoggingIn : kStateSignedIn;
  if (state_ != required) return;
  cancelConnectionTimeoutTask();
  scheduleHeartbeatPing();
  willProcessProto(*proto);
  switch (tag) {
    case kMSGProtoTagHeartbeatPing:
      sendHeartbeatAck();
      break;
    case kMSGProtoTagHeartbeatAck:
      break;
    case kMSGProtoTagLoginResponse:
      didReceiveLoginResponse(static_cast<const RelayLoginResponse&>(*proto));
      break;
    case kMSGProtoTagClose:
      didReceiveClose();
      break;
    case kMSGProtoTagIqStanza:
      handleIqStanza(static_cast<const RelayIqStanza&>(*proto));
      break;
    case kMSGProtoTagDataMessageStanza:
      if (auto delegate = delegate_.lock()) {
        delegate->connectionDidRecieveMessage(*this, static_cast<const RelayDataMessageStanza&>(*proto));
      }
      break;
    default:
      break;  // unhandled
  }
}

void MSGConnection::willProcessProto(const MSGProtoMessage& proto) {
  ++inStreamId_;
  const int32_t position = MSGUtilities::lastStreamIdForProto(proto);
  if (position != -1) {
    confirmAckedD2sIdsWithStreamId(position);
    confirmAckedS2dIdsWithStreamId(position);
  }
  if (auto persistentId = MSGUtilities::persistentIdForProto(proto)) {
    unackedS2dIds_.push_back(*persistentId);
    // A failure to save leaves the id in the list for this run.
    if (auto manager = rmq2Manager_.lock()) manager->saveS2dMessageWithRmqId(*persistentId);
  }
  bool immediateAck = false;
  if (auto* data = dynamic_cast<const RelayDataMessageStanza*>(&proto)) immediateAck = data->immediateack();
  if (immediateAck || inStreamId_ - lastStreamIdAcked_ >= kStreamAckThreshold) sendStreamAck();
}

void MSGConnection::confirmAckedD2sIdsWithStreamId(int32_t streamId) {
  std::vector<std::string> confirmed;
  size_t count = 0;
  while (count < d2sInfos_.size() && d2sInfos_[count].streamId <= streamId) {
    if (!d2sInfos_[count].d2sID.empty()) confirmed.push_back(d2sInfos_[count].d2sID);
    ++count;
  }
  d2sInfos_.erase(d2sInfos_.begin(), d2sInfos_.begin() + static_cast<ptrdiff_t>(count));
  auto delegate = delegate_.lock();
  if (!delegate) return;
  // Called twice, once for its effect and once for its count; the first call
  // has already removed the rows, so the second normally counts none.
  delegate->connectionDidReceiveAckForRmqIds(*this, confirmed);
  if (delegate->connectionDidReceiveAckForRmqIds(*this, confirmed) >= 5) sendStreamAck();
}

void MSGConnection::confirmAckedS2dIdsWithStreamId(int32_t streamId) {
  std::vector<std::string> confirmed;
  for (auto it = ackedS2dMap_.begin(); it != ackedS2dMap_.end();) {
    if (std::atoi(it->first.c_str()) <= streamId && !it->second.empty()) {
      confirmed.insert(confirmed.end(), it->second.begin(), it->second.end());
      it = ackedS2dMap_.erase(it);
    } else {
      ++it;
    }
  }
  if (auto manager = rmq2Manager_.lock()) manager->removeS2dIds(confirmed);
}

void MSGConnection::didReceiveLoginResponse(const RelayLoginResponse& response) {
  if (response.has_error()) return;  // the client's connect time-out ends this
  state_ = kStateSignedIn;
  lastLoginServerTimestamp_ = response.servertimestamp();
  if (auto delegate = delegate_.lock()) delegate->didLoginWithConnection(*this);
  sendHeartbeatPing();
  auto held = std::move(sendOnConnectMessages_);
  sendOnConnectMessages_.clear();
  for (auto& message : held) sendProto(*message);
}

void MSGConnection::didReceiveClose() { disconnect(); }

void MSGConnection::handleIqStanza(const RelayIqStanza& stanza) {
  if (!stanza.has_extension()) return;                              // unhandled
  if (stanza.extension().id_p() == kMSGExtensionStreamAck) return;  // its position is already handled
  if (stanza.extension().id_p() == kMSGExtensionSelectiveAck) didReceiveSelectiveAck(stanza);
}

void MSGConnection::didReceiveSelectiveAck(const RelayIqStanza& stanza) {
  RelaySelectiveAck ack;
  const std::string& bytes = stanza.extension().data_p();
  ack.MergeFromString(bytes);
  std::vector<std::string> ids(ack.id_parray().begin(), ack.id_parray().end());
  if (auto delegate = delegate_.lock()) delegate->connectionDidReceiveAckForRmqIds(*this, ids);
  if (auto resender = dataMessageManager_.lock()) resender->resendMessagesWithConnection(*this);
}

void MSGConnection::sendHeartbeatAck() {
  RelayHeartbeatAck ack;
  sendProto(ack);
}

void MSGConnection::sendHeartbeatPing() {
  runLoop_.cancelPreviousPerformRequests(this, kOpSendHeartbeatPing);
  cancelConnectionTimeoutTask();
  runLoop_.performAfterDelay(this, kOpConnectionTimedOut, kConnectionTimeoutInterval, [this] { connectionTimedOut(); });
  RelayHeartbeatPing ping;
  sendProto(ping);
}

void MSGConnection::scheduleHeartbeatPing() {
  runLoop_.performAfterDelay(this, kOpSendHeartbeatPing, kHeartbeatInterval, [this] { sendHeartbeatPing(); });
}

void MSGConnection::cancelConnectionTimeoutTask() {
  runLoop_.cancelPreviousPerformRequests(this, kOpConnectionTimedOut);
}

void MSGConnection::connectionTimedOut() {
  disconnect();
  if (auto delegate = delegate_.lock()) {
    delegate->connectionDidCloseForReason(*this, MSGConnectionDelegate::kCloseReasonTimeout);
  }
}

void MSGConnection::sendStreamAck() {
  RelayIqStanza ack = createStreamAck();
  sendProto(ack);
}

RelayIqStanza MSGConnection::createStreamAck() {
  RelayIqStanza ack;
  ack.set_type(RelayIqStanza::IQ_TYPE_1);
  ack.set_id_p("");
  RelayExtension* extension = ack.mutable_extension();
  extension->set_id_p(kMSGExtensionStreamAck);
  extension->set_data_p("");
  return ack;
}

void MSGConnection::sendClose() {
  RelayClose close;
  sendProto(close);
}

void MSGConnection::didDisconnectWithSecureSocket(MSGSecureSocket&) {
  disconnect();
  if (auto delegate = delegate_.lock()) {
    delegate->connectionDidCloseForReason(*this, MSGConnectionDelegate::kCloseReasonSocketDisconnected);
  }
}

void MSGConnection::secureSocketDidSendProtoWithTag(MSGSecureSocket&, int8_t, const std::optional<std::string>&) {
  // Sending has no completion step.
}

void MSGConnection::disconnect() {
  cancelConnectionTimeoutTask();
  runLoop_.cancelPreviousPerformRequests(this, kOpSendHeartbeatPing);
  if (socket_) {
    socket_->setDelegate(nullptr);
    socket_->disconnect();
  }
  state_ = kStateDisconnected;
}

void MSGConnection::signOut() {
  sendOnConnectMessages_.clear();
  if (state_ == kStateSignedIn) sendClose();
  if (state_ != kStateDisconnected) disconnect();
}

void MSGConnection::teardown() {
  if (state_ != kStateDisconnected) disconnect();
}

}  // namespace quillet::messaging
