#pragma once

#include <string>

#include "instanceid/support/InstanceIDLogLevel.h"

namespace quillet::instanceid {

// Decides whether a formatted message is written. Called from any thread.
class InstanceIDLogFilter {
 public:
  virtual ~InstanceIDLogFilter() = default;
  virtual bool filterAllowsMessage(const std::string& message, InstanceIDLogLevel level) const = 0;
};

// Admits Info, Error and Assert messages at or above `level`; Debug never.
class InstanceIDLogLevelFilter final : public InstanceIDLogFilter {
 public:
  explicit InstanceIDLogLevelFilter(int8_t level) : level(level) {}
  bool filterAllowsMessage(const std::string& message, InstanceIDLogLevel level) const override;

  int8_t level;
};

}  // namespace quillet::instanceid
