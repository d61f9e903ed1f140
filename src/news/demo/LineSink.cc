#include "news/demo/LineSink.h"

namespace quillet::news {

void LineSink::flushPending() {
  if (pending_.empty()) return;
  std::string line;
  line.swap(pending_);
  onLine_(line);
}

LineSink::int_type LineSink::overflow(int_type c) {
  if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
  const char ch = traits_type::to_char_type(c);
  xsputn(&ch, 1);
  return c;
}

std::streamsize LineSink::xsputn(const char* text, std::streamsize count) {
  for (std::streamsize i = 0; i < count; ++i) {
    if (text[i] != '\n') {
      pending_.push_back(text[i]);
      continue;
    }
    std::string line;
    line.swap(pending_);
    onLine_(line);
  }
  return count;
}

}  // namespace quillet::news
