#pragma once

#include <string>
#include <vector>

namespace quillet::news {

// Breaks text into lines of at most `width` characters (UTF-8 code points)
// at spaces, for drawing on a terminal. Line breaks in the text are kept
// (an empty line stays empty), runs of spaces fold into one, and a word
// longer than the width is cut. Pure; any thread.
class WordWrap {
 public:
  static std::vector<std::string> lines(const std::string& text, int width);
  // The number of code points of UTF-8 text.
  static size_t characters(const std::string& text);
};

}  // namespace quillet::news
