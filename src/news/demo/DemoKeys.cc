#include "news/demo/DemoKeys.h"

#include <algorithm>
#include <cctype>

#include "news/app/AppKeys.h"
#include "platform/support/Text.h"

namespace quillet::news {

using platform::trim;

namespace {

bool allDigits(const std::string& text) {
  return !text.empty() &&
         std::all_of(text.begin(), text.end(), [](char c) { return std::isdigit(static_cast<unsigned char>(c)); });
}

}  // namespace

DemoKeys::Step DemoKeys::translate(const std::string& line, const std::string& screen, const platform::Value& feed) {
  const std::string key = trim(line);
  if (key.empty()) return {Action::Run, ""};
  if (key == "q" || key == "quit" || key == "exit") return {Action::Quit, ""};
  if (key == "h" || key == "?" || key == "help") return {Action::Help, ""};
  if (key == "n" || key == "l") return {Action::Run, "swipe left"};
  if (key == "p" || key == "r") return {Action::Run, "swipe right"};
  if (key == "b") return {Action::Run, "tap lblNewsTitle"};
  if (key == "m") return {Action::Run, "tap btnMenu"};
  if (key == "o") return {Action::Run, "tap btnOption"};
  if (key == "f") return {Action::Run, "tap btnRefresh"};
  if (key == "g") return {Action::Run, "tap btnNext"};
  if (key == "v") return {Action::Run, "tap btnPlayVideo"};
  if (key == "x") {
    if (!feed["menu"].isNil()) return {Action::Run, "tap btnHideMenu"};
    if (!feed["options"].isNil()) return {Action::Run, "tap btnHideOption"};
    return {Action::Say, "no panel is open"};
  }
  if (allDigits(key)) {
    std::string command = screen == kCategoryScreen ? "check " : "select ";
    command.append(key);
    return {Action::Run, command};
  }
  return {Action::Run, key};
}

const char* DemoKeys::helpLine() {
  return "keys: n next, p previous, b bookmark, m menu, o options, x close, NUMBER row, f refresh, g Next, "
         "v video, h help, q quit";
}

const char* DemoKeys::helpText() {
  return "  n or l    swipe left: the next story\n"
         "  p or r    swipe right: the previous story\n"
         "  b         tap the story's title: bookmark it (again: remove it)\n"
         "  m         open the menu (feeds and categories)\n"
         "  o         open the options (night mode, HD pictures, notifications)\n"
         "  x         close the open panel\n"
         "  NUMBER    pick that row of the open panel; on the first screen, check that category\n"
         "  f         refresh the feed\n"
         "  g         the first screen's Next button\n"
         "  v         play the story's video\n"
         "  h or ?    this help\n"
         "  q, quit   leave (Ctrl-C does the same)\n"
         "Anything else is a driver command, such as: switch night on, scroll 3, wait 4, network none,\n"
         "alert-tap OK, background, active, screen (see docs/driver.md).\n";
}

}  // namespace quillet::news
