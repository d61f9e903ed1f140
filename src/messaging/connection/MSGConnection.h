#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "messaging/schema/MSGProto.h"

#include "messaging/connection/MSGConnectionDelegate.h"
#include "messaging/connection/MSGD2SInfo.h"
#include "messaging/rmq/MSGRmqManager.h"
#include "messaging/socket/MSGSecureSocket.h"
#include "platform/runloop/RunLoop.h"

namespace quillet::messaging {

// The relay protocol's state machine over one MSGSecureSocket per sign-in:
// login, the stream counters of both directions, acknowledgement of what
// came in, matching of confirmations to stored messages, heartbeats and the
// dead-connection time-out. Retry policy belongs to the client above.
//
// Thread: everything on `runLoop`, timers included (delayed calls keyed by
// this object and the operation name). The delegate, the rmq manager and the
// resender are held weakly. Owns its socket.
class MSGConnection : public MSGSecureSocketDelegate {
 public:
  enum State : uint32_t { kStateDisconnected = 0, kStateConnecting = 1, kStateLoggingIn = 2, kStateSignedIn = 3 };

  static constexpr double kHeartbeatInterval = 30.0;          // ping after a frame
  static constexpr double kConnectionTimeoutInterval = 20.0;  // answer wait after a ping
  static constexpr int32_t kStreamAckThreshold = 10;

  MSGConnection(std::string authId, std::string token, std::string host, uint16_t port, platform::RunLoop& runLoop,
                std::weak_ptr<MSGRmqManager> rmq2Manager, std::weak_ptr<MSGConnectionResender> msgManager,
                MSGSecureSocket::StreamFactory streamFactory);
  ~MSGConnection() override;
  MSGConnection(const MSGConnection&) = delete;
  MSGConnection& operator=(const MSGConnection&) = delete;

  void setDelegate(std::weak_ptr<MSGConnectionDelegate> delegate) { delegate_ = std::move(delegate); }
  // The service's network type (0 none, 1 not cellular, 2 cellular).
  void setNetworkType(int networkType) { networkType_ = networkType; }

  void signIn();
  void signOut();
  void teardown();
  void disconnect();
  // Sends in the right state (login in 2, all else in 3); drops otherwise.
  // The message gains its lastStreamIdReceived on the way.
  void sendProto(MSGProtoMessage& proto);
  // Sends when signed in, else holds the message until login.
  void sendOnConnectOrDrop(const MSGProtoMessage& proto);
  void sendHeartbeatAck();
  void sendHeartbeatPing();
  void sendStreamAck();
  void sendClose();
  static RelayIqStanza createStreamAck();
  // 1 for network type 1, 0 for 2, -1 otherwise.
  int32_t currentNetworkType() const;

  State state() const { return state_; }
  const std::string& host() const { return host_; }
  uint16_t port() const { return port_; }
  int32_t inStreamId() const { return inStreamId_; }
  int32_t outStreamId() const { return outStreamId_; }
  int32_t lastStreamIdAcked() const { return lastStreamIdAcked_; }
  int64_t lastLoginServerTimestamp() const { return lastLoginServerTimestamp_; }
  const std::vector<std::string>& unackedS2dIds() const { return unackedS2dIds_; }
  const std::map<std::string, std::vector<std::string>>& ackedS2dMap() const { return ackedS2dMap_; }
  const std::vector<MSGD2SInfo>& d2sInfos() const { return d2sInfos_; }
  size_t sendOnConnectMessageCount() const { return sendOnConnectMessages_.size(); }
  // "host: %@, port: %lu, stream id in: %d, stream id out: %d"
  std::string description() const;

  // MSGSecureSocketDelegate.
  void secureSocketDidConnect(MSGSecureSocket& socket) override;
  void didDisconnectWithSecureSocket(MSGSecureSocket& socket) override;
  void secureSocketDidReceiveData(MSGSecureSocket& socket, std::span<const uint8_t> data, int8_t tag) override;
  void secureSocketDidSendProtoWithTag(MSGSecureSocket& socket, int8_t tag,
                                       const std::optional<std::string>& rmqId) override;

 private:
  void resetUnconfirmedAcks();
  void sendLoginRequest(const std::string& authId, const std::string& token);
  void willSendProto(MSGProtoMessage& proto);
  void willProcessProto(const MSGProtoMessage& proto);
  void confirmAckedD2sIdsWithStreamId(int32_t streamId);
  void confirmAckedS2dIdsWithStreamId(int32_t streamId);
  void didReceiveLoginResponse(const RelayLoginResponse& response);
  void didReceiveClose();
  void handleIqStanza(const RelayIqStanza& stanza);
  void didReceiveSelectiveAck(const RelayIqStanza& stanza);
  void connectionTimedOut();
  void cancelConnectionTimeoutTask();
  void scheduleHeartbeatPing();

  std::string authId_;
  std::string token_;
  std::string host_;
  uint16_t port_;
  platform::RunLoop& runLoop_;
  std::weak_ptr<MSGRmqManager> rmq2Manager_;
  std::weak_ptr<MSGConnectionResender> dataMessageManager_;
  std::weak_ptr<MSGConnectionDelegate> delegate_;
  MSGSecureSocket::StreamFactory streamFactory_;
  std::unique_ptr<MSGSecureSocket> socket_;
  int networkType_ = 0;

  State state_ = kStateDisconnected;
  int32_t lastStreamIdAcked_ = 0;
  int32_t inStreamId_ = 0;
  int32_t outStreamId_ = 0;
  int64_t lastLoginServerTimestamp_ = 0;
  std::vector<std::string> unackedS2dIds_;
  std::map<std::string, std::vector<std::string>> ackedS2dMap_;
  std::vector<MSGD2SInfo> d2sInfos_;
  std::vector<std::unique_ptr<MSGProtoMessage>> sendOnConnectMessages_;
};

}  // namespace quillet::messaging
