#pragma once

#include <memory>
#include <string>
#include <vector>

#include "backend/relay/RelayFault.h"
#include "backend/relay/RelayMailbox.h"
#include "backend/relay/RelayServerOptions.h"
#include "messaging/schema/Relay.pb.h"
#include "platform/value/Error.h"

namespace quillet::backend {

// The stand-in relay server: TLS on the given address, the server side of
// the relay protocol (see RelaySession), and an admin HTTP interface on the
// same host:
//   POST /relay/messages  {"device": "...", "category": "...", "from": "...",
//                          "data": {"k": "v"}, "immediateAck": false}
//                         -> {"persistentId": "..."}
//   GET  /relay/messages  -> {"held": [...], "received": [...]}
//   POST /relay/_control  {"fault": "<name>", "on": true} or {"clear": true}
// (fault names as relayFaultNamed; actions act on every signed-in connection).
// Runs on its own threads between start() and stop(); the public functions
// may be called from any thread. The destructor stops it.
class RelayServer {
 public:
  explicit RelayServer(RelayServerOptions options);
  ~RelayServer();
  RelayServer(const RelayServer&) = delete;
  RelayServer& operator=(const RelayServer&) = delete;

  // Loads the certificate, binds both ports and starts serving.
  bool start(platform::Error* error = nullptr);
  void stop();

  int port() const;              // the relay port, 0 before start
  int adminPort() const;         // 0 when there is no admin interface
  std::string adminUrl() const;  // "http://127.0.0.1:<port>"

  // Holds a data message for `device` and delivers it on its open connections; the persistent id.
  std::string queueDataMessage(const std::string& device, messaging::RelayDataMessageStanza stanza);
  void setCredential(const std::string& device, const std::string& secret);
  // A mode on or off, or an action on every signed-in connection now.
  void setFault(RelayFault fault, bool on = true);
  void clearFaults();
  // Closes every connection at once (the network going away).
  void dropConnections();
  // Number of connections that completed a good login and are still open.
  int signedInCount() const;

  RelayMailbox& mailbox();

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace quillet::backend
