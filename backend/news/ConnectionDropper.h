#pragma once

namespace quillet::backend {

// Closes a connection that this process accepted, from inside the server's
// request handler, so that the peer sees the connection end without a reply.
// The HTTP server library does not hand its socket to the handler, so the
// socket is found among the process's open descriptors by its two ports.
class ConnectionDropper {
 public:
  // Shuts down both directions of the TCP socket bound to `localPort` and
  // connected from `remotePort`. False when no such socket is open. The
  // library's later write then fails on that socket: callers block SIGPIPE
  // on the serving threads.
  static bool drop(int localPort, int remotePort);
};

}  // namespace quillet::backend
