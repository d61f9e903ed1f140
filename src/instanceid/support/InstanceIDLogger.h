#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "instanceid/support/InstanceIDLogFilter.h"
#include "instanceid/support/InstanceIDLogFormatter.h"
#include "instanceid/support/InstanceIDLogWriter.h"

namespace quillet::instanceid {

// The subsystem's log: a message is formatted, then the filter is asked, then
// the writer writes. One shared object for the process (never destroyed);
// parts may be replaced (the facade installs a level filter at start, tests
// a capturing writer). Thread-safe.
class InstanceIDLogger {
 public:
  static InstanceIDLogger& shared();

  void setFilter(std::shared_ptr<InstanceIDLogFilter> filter);
  void setWriter(std::shared_ptr<InstanceIDLogWriter> writer);
  void setFormatter(std::shared_ptr<InstanceIDLogFormatter> formatter);
  // A watcher's level (the phone driver's --log-level): messages at or above
  // it are written even when the filter refuses them, so that every level
  // the subsystem writes can be seen. nullopt: the filter alone decides.
  void setShownLevel(std::optional<InstanceIDLogLevel> level);

  void logFuncDebug(const std::string& func, const std::string& message) {
    log(func, message, InstanceIDLogLevel::Debug);
  }
  void logFuncInfo(const std::string& func, const std::string& message) {
    log(func, message, InstanceIDLogLevel::Info);
  }
  void logFuncError(const std::string& func, const std::string& message) {
    log(func, message, InstanceIDLogLevel::Error);
  }
  void logFuncAssert(const std::string& func, const std::string& message) {
    log(func, message, InstanceIDLogLevel::Assert);
  }

 private:
  InstanceIDLogger();
  void log(const std::string& func, const std::string& message, InstanceIDLogLevel level);

  std::mutex mutex_;
  std::shared_ptr<InstanceIDLogFilter> filter_;
  std::shared_ptr<InstanceIDLogWriter> writer_;
  std::shared_ptr<InstanceIDLogFormatter> formatter_;
  std::optional<InstanceIDLogLevel> shownLevel_;
};

// Shorthands for the subsystem's code: the calling function's name is passed along.
inline void iidLogDebug(const std::string& message, const char* func = __builtin_FUNCTION()) {
  InstanceIDLogger::shared().logFuncDebug(func, message);
}
inline void iidLogInfo(const std::string& message, const char* func = __builtin_FUNCTION()) {
  InstanceIDLogger::shared().logFuncInfo(func, message);
}
inline void iidLogError(const std::string& message, const char* func = __builtin_FUNCTION()) {
  InstanceIDLogger::shared().logFuncError(func, message);
}

}  // namespace quillet::instanceid
