#pragma once

#include <httplib.h>

#include <thread>

namespace quillet::backend {

// Runs the accept loop of `server`, already bound to its port, on a new
// thread, and returns once the loop runs or has already ended. The serving
// threads are made from that thread and inherit its signal mask, with
// SIGPIPE blocked: a write to a dropped connection then fails instead of
// ending the process. `*listening` tells whether the loop is running (false:
// it ended at once and the thread has finished). The caller joins the
// thread after server.stop(). The server must outlive the thread.
std::thread listenInBackground(httplib::Server& server, bool* listening);

}  // namespace quillet::backend
