#pragma once

namespace quillet::news {

// The width of the terminal the demo draws on.
class TerminalSize {
 public:
  static constexpr int kDefaultColumns = 80;
  // $COLUMNS when it is a positive number, else the width of the terminal
  // on standard output, else kDefaultColumns. Any thread.
  static int columns();
};

}  // namespace quillet::news
