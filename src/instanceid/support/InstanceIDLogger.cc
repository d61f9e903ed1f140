#include "instanceid/support/InstanceIDLogger.h"

#include "platform/log/Log.h"
#include "platform/text/DateFormatter.h"
#include "platform/value/Format.h"

namespace quillet::instanceid {

bool InstanceIDLogLevelFilter::filterAllowsMessage(const std::string&, InstanceIDLogLevel messageLevel) const {
  const auto value = static_cast<int8_t>(messageLevel);
  return value >= 1 && value <= 3 && value >= level;
}

void InstanceIDLogStandardWriter::logMessage(const std::string& message, InstanceIDLogLevel) {
  std::lock_guard lock(mutex_);
  try {
    platform::Log::write(message);
  } catch (...) {
    // A failed write loses the line and nothing else.
  }
}

std::string InstanceIDLogStandardFormatter::stringForFunc(const std::string&, const std::string& message,
                                                          InstanceIDLogLevel) const {
  // One formatter per thread: ICU formatters are not shared across threads.
  thread_local std::optional<platform::DateFormatter> formatter =
      platform::DateFormatter::createForDevice("yyyy-MM-dd HH:mm:ss.SSS");
  const std::string time = formatter ? formatter->format(clock_->wallSeconds()) : std::string();
  return platform::format("%@: %@ | %@", time, "InstanceID", message);
}

InstanceIDLogger& InstanceIDLogger::shared() {
  // Never destroyed: background queues may log while the process exits.
  static auto* logger = new InstanceIDLogger();
  return *logger;
}

InstanceIDLogger::InstanceIDLogger()
    : filter_(std::make_shared<InstanceIDLogLevelFilter>(2)),
      writer_(std::make_shared<InstanceIDLogStandardWriter>()),
      formatter_(std::make_shared<InstanceIDLogStandardFormatter>()) {}

void InstanceIDLogger::setFilter(std::shared_ptr<InstanceIDLogFilter> filter) {
  std::lock_guard lock(mutex_);
  filter_ = std::move(filter);
}

void InstanceIDLogger::setWriter(std::shared_ptr<InstanceIDLogWriter> writer) {
  std::lock_guard lock(mutex_);
  writer_ = std::move(writer);
}

void InstanceIDLogger::setShownLevel(std::optional<InstanceIDLogLevel> level) {
  std::lock_guard lock(mutex_);
  shownLevel_ = level;
}

void InstanceIDLogger::setFormatter(std::shared_ptr<InstanceIDLogFormatter> formatter) {
  std::lock_guard lock(mutex_);
  formatter_ = std::move(formatter);
}

void InstanceIDLogger::log(const std::string& func, const std::string& message, InstanceIDLogLevel level) {
  std::shared_ptr<InstanceIDLogFilter> filter;
  std::shared_ptr<InstanceIDLogWriter> writer;
  std::shared_ptr<InstanceIDLogFormatter> formatter;
  bool shown = false;
  {
    std::lock_guard lock(mutex_);
    filter = filter_;
    writer = writer_;
    formatter = formatter_;
    shown = shownLevel_ && static_cast<int8_t>(level) >= static_cast<int8_t>(*shownLevel_);
  }
  const std::string line = formatter ? formatter->stringForFunc(func, message, level) : message;
  if (!shown && filter && !filter->filterAllowsMessage(line, level)) return;
  if (writer) writer->logMessage(line, level);
}

}  // namespace quillet::instanceid
