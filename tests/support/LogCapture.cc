#include "support/LogCapture.h"

#include "platform/log/Log.h"

namespace quillet::testing {

LogCapture::LogCapture() {
  platform::Log::setStandardErrorEnabled(false);
  handle_ = platform::Log::addSink([this](const platform::LogRecord& record) {
    std::lock_guard lock(mutex_);
    messages_.push_back(record.message);
  });
}

LogCapture::~LogCapture() {
  platform::Log::removeSink(handle_);
  platform::Log::setStandardErrorEnabled(true);
}

std::vector<std::string> LogCapture::messages() const {
  std::lock_guard lock(mutex_);
  return messages_;
}

bool LogCapture::contains(const std::string& fragment) const {
  std::lock_guard lock(mutex_);
  for (const auto& m : messages_) {
    if (m.find(fragment) != std::string::npos) return true;
  }
  return false;
}

void LogCapture::clear() {
  std::lock_guard lock(mutex_);
  messages_.clear();
}

}  // namespace quillet::testing
