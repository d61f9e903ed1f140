#pragma once

#include <array>
#include <atomic>
#include <streambuf>

namespace quillet::news {

// An input stream buffer over a file descriptor (the terminal, a pipe or a
// file) that ends, as at the end of the input, as soon as `stop` is raised:
// it waits for input in short polls and looks at the flag between them, so a
// signal handler that only raises the flag ends a blocked read wherever the
// signal was delivered. The descriptor is not owned; `stop` outlives the
// buffer. One reading thread.
class TerminalInput : public std::streambuf {
 public:
  // How long one poll waits before looking at the flag again.
  static constexpr int kPollMilliseconds = 100;

  TerminalInput(int fd, const std::atomic<bool>& stop) : fd_(fd), stop_(stop) {}

 protected:
  int_type underflow() override;

 private:
  int fd_;
  const std::atomic<bool>& stop_;
  std::array<char, 4096> buffer_{};
};

}  // namespace quillet::news
