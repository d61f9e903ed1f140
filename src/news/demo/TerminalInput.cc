#include "news/demo/TerminalInput.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace quillet::news {

TerminalInput::int_type TerminalInput::underflow() {
  if (gptr() < egptr()) return traits_type::to_int_type(*gptr());
  while (!stop_.load()) {
    pollfd waiting{fd_, POLLIN, 0};
    const int ready = ::poll(&waiting, 1, kPollMilliseconds);
    if (ready < 0 && errno != EINTR) return traits_type::eof();
    if (ready <= 0) continue;
    const ssize_t got = ::read(fd_, buffer_.data(), buffer_.size());
    if (got < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (got <= 0) return traits_type::eof();
    setg(buffer_.data(), buffer_.data(), buffer_.data() + got);
    return traits_type::to_int_type(*gptr());
  }
  return traits_type::eof();
}

}  // namespace quillet::news
