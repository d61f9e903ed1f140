#pragma once

#include <cstdarg>
#include <functional>
#include <string>
#include <string_view>

namespace quillet::platform {

// One line of the process log.
struct LogRecord {
  double wallSeconds = 0;  // when it was written
  std::string message;     // the text as the caller gave it
  std::string line;        // the full line: "yyyy-MM-dd HH:mm:ss.SSS quillet[pid:tid] message"
};

using LogSink = std::function<void(const LogRecord&)>;

// The process log, in the style of the phone's system log. Lines go to every
// registered sink, and to standard error unless that is switched off. All
// functions are thread-safe; sinks are called on the writing thread, one line
// at a time, under the log's lock (a sink must not write to the log).
class Log {
 public:
  // Writes one line.
  static void write(std::string_view message);
  // printf-style convenience over write().
  [[gnu::format(printf, 1, 2)]] static void writef(const char* fmt, ...);

  // Adds a sink; returns a handle for removeSink.
  static int addSink(LogSink sink);
  static void removeSink(int handle);

  // Standard error is on by default; tests and the driver may turn it off.
  static void setStandardErrorEnabled(bool enabled);

  // The name shown in each line (default "quillet").
  static void setProcessName(std::string name);
};

}  // namespace quillet::platform
