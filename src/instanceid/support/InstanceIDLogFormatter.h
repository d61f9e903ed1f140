#pragma once

#include <memory>
#include <string>

#include "instanceid/support/InstanceIDLogLevel.h"
#include "platform/clock/Clock.h"

namespace quillet::instanceid {

// Turns a message into the line that is written. Called from any thread.
class InstanceIDLogFormatter {
 public:
  virtual ~InstanceIDLogFormatter() = default;
  virtual std::string stringForFunc(const std::string& func, const std::string& message,
                                    InstanceIDLogLevel level) const = 0;
};

// "<yyyy-MM-dd HH:mm:ss.SSS>: InstanceID | <message>", the time in the
// device's time zone from `clock`; the function name is not shown.
class InstanceIDLogStandardFormatter final : public InstanceIDLogFormatter {
 public:
  explicit InstanceIDLogStandardFormatter(std::shared_ptr<platform::Clock> clock = platform::Clock::system())
      : clock_(std::move(clock)) {}
  std::string stringForFunc(const std::string& func, const std::string& message,
                            InstanceIDLogLevel level) const override;

 private:
  std::shared_ptr<platform::Clock> clock_;
};

}  // namespace quillet::instanceid
