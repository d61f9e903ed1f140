#include "platform/log/Log.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <ctime>
#include <map>
#include <mutex>
#include <vector>

#include "platform/clock/Clock.h"

namespace quillet::platform {
namespace {

struct LogState {
  std::mutex mutex;
  std::map<int, LogSink> sinks;
  int nextHandle = 1;
  bool standardError = true;
  std::string processName = "quillet";
};

LogState& state() {
  static LogState* s = new LogState();  // never destroyed: logging may happen at exit
  return *s;
}

std::string timestamp(double wall) {
  double whole = std::floor(wall);
  auto seconds = static_cast<time_t>(whole);
  int millis = static_cast<int>((wall - whole) * 1000.0);
  if (millis > 999) millis = 999;
  struct tm parts {};
  localtime_r(&seconds, &parts);
  char buffer[64];
  size_t n = strftime(buffer, sizeof buffer, "%Y-%m-%d %H:%M:%S", &parts);
  snprintf(buffer + n, sizeof buffer - n, ".%03d", millis);
  return buffer;
}

}  // namespace

void Log::write(std::string_view message) {
  LogState& s = state();
  LogRecord record;
  record.wallSeconds = Clock::system()->wallSeconds();
  record.message = std::string(message);
  std::lock_guard lock(s.mutex);
  record.line = timestamp(record.wallSeconds) + " " + s.processName + "[" + std::to_string(getpid()) + ":" +
                std::to_string(static_cast<long>(syscall(SYS_gettid))) + "] " + record.message;
  if (s.standardError) {
    fprintf(stderr, "%s\n", record.line.c_str());
  }
  for (auto& [handle, sink] : s.sinks) sink(record);
}

void Log::writef(const char* fmt, ...) {
  va_list args;
  va_start(args, fmt);
  va_list copy;
  va_copy(copy, args);
  int n = vsnprintf(nullptr, 0, fmt, copy);
  va_end(copy);
  std::string text(n > 0 ? static_cast<size_t>(n) : 0, '\0');
  if (n > 0) vsnprintf(text.data(), text.size() + 1, fmt, args);
  va_end(args);
  write(text);
}

int Log::addSink(LogSink sink) {
  LogState& s = state();
  std::lock_guard lock(s.mutex);
  int handle = s.nextHandle++;
  s.sinks.emplace(handle, std::move(sink));
  return handle;
}

void Log::removeSink(int handle) {
  LogState& s = state();
  std::lock_guard lock(s.mutex);
  s.sinks.erase(handle);
}

void Log::setStandardErrorEnabled(bool enabled) {
  LogState& s = state();
  std::lock_guard lock(s.mutex);
  s.standardError = enabled;
}

void Log::setProcessName(std::string name) {
  LogState& s = state();
  std::lock_guard lock(s.mutex);
  s.processName = std::move(name);
}

}  // namespace quillet::platform
