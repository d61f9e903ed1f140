#pragma once

#include <mutex>
#include <string>

#include "instanceid/support/InstanceIDLogLevel.h"

namespace quillet::instanceid {

// Writes one formatted message. Called from any thread.
class InstanceIDLogWriter {
 public:
  virtual ~InstanceIDLogWriter() = default;
  virtual void logMessage(const std::string& message, InstanceIDLogLevel level) = 0;
};

// Writes each message as one line of the process log (the program has no
// console of its own: the driver owns standard output), one writer at a time.
class InstanceIDLogStandardWriter final : public InstanceIDLogWriter {
 public:
  void logMessage(const std::string& message, InstanceIDLogLevel level) override;

 private:
  std::mutex mutex_;
};

}  // namespace quillet::instanceid
