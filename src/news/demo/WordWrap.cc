#include "news/demo/WordWrap.h"

#include <algorithm>
#include <sstream>

namespace quillet::news {

namespace {

bool continuationByte(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// The byte length of the first `count` code points of `text` (all of it when shorter).
size_t prefixBytes(const std::string& text, size_t count) {
  size_t seen = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    if (continuationByte(text[i])) continue;
    if (seen == count) return i;
    ++seen;
  }
  return text.size();
}

void wrapParagraph(const std::string& paragraph, size_t width, std::vector<std::string>& out) {
  std::istringstream words(paragraph);
  std::string word;
  std::string line;
  size_t lineLength = 0;
  while (words >> word) {
    while (WordWrap::characters(word) > width) {
      if (!line.empty()) {
        out.push_back(line);
        line.clear();
        lineLength = 0;
      }
      const size_t cut = prefixBytes(word, width);
      out.push_back(word.substr(0, cut));
      word.erase(0, cut);
    }
    const size_t length = WordWrap::characters(word);
    if (length == 0) continue;
    if (!line.empty() && lineLength + 1 + length > width) {
      out.push_back(line);
      line.clear();
      lineLength = 0;
    }
    if (!line.empty()) {
      line += ' ';
      ++lineLength;
    }
    line += word;
    lineLength += length;
  }
  out.push_back(line);
}

}  // namespace

size_t WordWrap::characters(const std::string& text) {
  return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char c) { return !continuationByte(c); }));
}

std::vector<std::string> WordWrap::lines(const std::string& text, int width) {
  const size_t limit = static_cast<size_t>(std::max(width, 1));
  std::vector<std::string> out;
  size_t start = 0;
  for (;;) {
    const size_t end = text.find('\n', start);
    std::string paragraph = text.substr(start, end == std::string::npos ? std::string::npos : end - start);
    std::replace(paragraph.begin(), paragraph.end(), '\t', ' ');
    std::replace(paragraph.begin(), paragraph.end(), '\r', ' ');
    wrapParagraph(paragraph, limit, out);
    if (end == std::string::npos) break;
    start = end + 1;
  }
  return out;
}

}  // namespace quillet::news
