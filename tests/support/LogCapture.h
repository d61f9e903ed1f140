#pragma once

#include <mutex>
#include <string>
#include <vector>

namespace quillet::testing {

// Collects the messages written to the process log while it lives, and keeps
// them off standard error. Thread-safe.
class LogCapture {
 public:
  LogCapture();
  ~LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  std::vector<std::string> messages() const;
  // True when some message contains `fragment`.
  bool contains(const std::string& fragment) const;
  void clear();

 private:
  mutable std::mutex mutex_;
  std::vector<std::string> messages_;
  int handle_;
};

}  // namespace quillet::testing
