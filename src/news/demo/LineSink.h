#pragma once

#include <functional>
#include <streambuf>
#include <string>

namespace quillet::news {

// An output stream buffer that hands every complete line written to it (the
// text before each '\n', without it) to a callback, at once. A last line
// without '\n' is handed over by flushPending() or the destructor. The
// callback runs on the writing thread, inside the write.
class LineSink : public std::streambuf {
 public:
  explicit LineSink(std::function<void(const std::string&)> onLine) : onLine_(std::move(onLine)) {}
  ~LineSink() override { flushPending(); }

  // Hands over the text written since the last '\n', if any.
  void flushPending();

 protected:
  int_type overflow(int_type c) override;
  std::streamsize xsputn(const char* text, std::streamsize count) override;

 private:
  std::function<void(const std::string&)> onLine_;
  std::string pending_;
};

}  // namespace quillet::news
