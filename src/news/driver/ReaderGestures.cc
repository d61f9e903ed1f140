#include "news/driver/ReaderGestures.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "platform/ui/TableView.h"
#include "platform/ui/UiDriver.h"
#include "platform/ui/UiError.h"
#include "platform/ui/ViewController.h"
#include "platform/ui/Window.h"

namespace quillet::news {

namespace {

std::optional<int> number(const std::string& text) {
  int value = 0;
  auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (text.empty() || ec != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

bool fail(platform::Error* error, const std::string& message) {
  return platform::uiError(error, platform::UiErrorCode::BadPath, message);
}

}  // namespace

std::string ReaderGestures::visibleTableName() const {
  auto screen = application_.window().topScreen();
  if (!screen) return "";
  for (const auto& [name, view] : screen->outlets()) {
    if (!std::dynamic_pointer_cast<platform::TableView>(view) || view->isEffectivelyHidden()) continue;
    bool reachable = true;
    for (const platform::View* level = view.get(); level != nullptr; level = level->superview()) {
      if (level->alpha() <= 0.01) reachable = false;
    }
    if (reachable) return name;
  }
  return "";
}

bool ReaderGestures::swipe(const std::string& direction, platform::Error* error) {
  platform::SwipeDirection way;
  if (direction == "left") {
    way = platform::SwipeDirection::Left;
  } else if (direction == "right") {
    way = platform::SwipeDirection::Right;
  } else {
    return fail(error, "swipe: left or right");
  }
  return platform::UiDriver(application_).swipe("swipeView", way, error);
}

bool ReaderGestures::select(const std::string& row, platform::Error* error) {
  auto index = number(row);
  if (!index) return fail(error, "select: needs a row number");
  const std::string table = visibleTableName();
  if (table.empty()) return fail(error, "select: no table is on show");
  return platform::UiDriver(application_).selectRow(table, platform::IndexPath{0, *index}, error);
}

bool ReaderGestures::check(const std::string& row, platform::Error* error) {
  auto index = number(row);
  if (!index) return fail(error, "check: needs a row number");
  const std::string name = visibleTableName();
  if (name.empty()) return fail(error, "check: no table is on show");
  platform::UiDriver hand(application_);
  auto table = std::dynamic_pointer_cast<platform::TableView>(hand.findView(name, error));
  if (!table || !table->scrollToRow(platform::IndexPath{0, *index}, error)) return false;
  return hand.tap(name + "/" + row + "/btnCheck", error);
}

bool ReaderGestures::setSwitch(const std::string& argument, platform::Error* error) {
  const size_t space = argument.find(' ');
  const std::string which = argument.substr(0, space);
  const std::string state = space == std::string::npos ? "" : argument.substr(space + 1);
  const char* outlet = which == "night"          ? "switchNightMode"
                       : which == "hd"           ? "switchHDImage"
                       : which == "notification" ? "switchNotification"
                                                 : nullptr;
  if (outlet == nullptr || (state != "on" && state != "off")) {
    return fail(error, "switch: night|hd|notification on|off");
  }
  return platform::UiDriver(application_).setOn(outlet, state == "on", error);
}

bool ReaderGestures::scroll(const std::string& rows, platform::Error* error) {
  auto by = number(rows);
  if (!by) return fail(error, "scroll: needs a number of rows");
  const std::string name = visibleTableName();
  if (name.empty()) return fail(error, "scroll: no table is on show");
  auto table = std::dynamic_pointer_cast<platform::TableView>(platform::UiDriver(application_).findView(name, error));
  if (!table) return false;
  const auto visible = table->indexPathsForVisibleRows();
  const int total = table->numberOfRowsInSection(0);
  if (visible.empty() || total == 0) return true;
  const int edge = *by < 0 ? visible.front().row : visible.back().row;
  const int target = std::clamp(edge + *by, 0, total - 1);
  return table->scrollToRow(platform::IndexPath{0, target}, error);
}

}  // namespace quillet::news
