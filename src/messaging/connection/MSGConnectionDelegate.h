#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "messaging/schema/Relay.pb.h"

namespace quillet::messaging {

class MSGConnection;

// What a MSGConnection tells its client, on the connection's run loop. The
// delegate must not destroy the connection from inside a call.
class MSGConnectionDelegate {
 public:
  // Why a connection closed.
  enum CloseReason : int { kCloseReasonSocketDisconnected = 0, kCloseReasonTimeout = 1 };

  virtual ~MSGConnectionDelegate() = default;
  virtual void connectionDidCloseForReason(MSGConnection& connection, int reason) = 0;
  // A login response without error came.
  virtual void didLoginWithConnection(MSGConnection& connection) = 0;
  // A data stanza came.
  virtual void connectionDidRecieveMessage(MSGConnection& connection, const RelayDataMessageStanza& message) = 0;
  // The server confirmed these device-to-server ids; the count of stored messages removed.
  virtual int32_t connectionDidReceiveAckForRmqIds(MSGConnection& connection,
                                                   const std::vector<std::string>& rmqIds) = 0;
};

// The part of the data message manager that the connection calls after a
// selective ack: the only place from which stored messages are sent again.
class MSGConnectionResender {
 public:
  virtual ~MSGConnectionResender() = default;
  virtual void resendMessagesWithConnection(MSGConnection& connection) = 0;
};

}  // namespace quillet::messaging
