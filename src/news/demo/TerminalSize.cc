#include "news/demo/TerminalSize.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <charconv>
#include <cstdlib>
#include <cstring>

namespace quillet::news {

int TerminalSize::columns() {
  if (const char* text = std::getenv("COLUMNS")) {
    int value = 0;
    const char* end = text + std::strlen(text);
    auto [stop, ec] = std::from_chars(text, end, value);
    if (ec == std::errc() && stop == end && value > 0) return value;
  }
  winsize size{};
  if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
  return kDefaultColumns;
}

}  // namespace quillet::news
