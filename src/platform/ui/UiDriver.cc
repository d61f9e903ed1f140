#include "platform/ui/UiDriver.h"

#include <charconv>

#include "platform/ui/AlertController.h"
#include "platform/ui/Application.h"
#include "platform/ui/CollectionView.h"
#include "platform/ui/Snapshot.h"
#include "platform/ui/Switch.h"
#include "platform/ui/TableView.h"
#include "platform/ui/TextInput.h"
#include "platform/ui/UiError.h"

namespace quillet::platform {

namespace {

constexpr double kTransparentAlpha = 0.01;

std::optional<int> parseNumber(std::string_view text) {
  int number = 0;
  auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (ec != std::errc() || end != text.data() + text.size() || text.empty()) return std::nullopt;
  return number;
}

// "3" (section 0) or "1.3".
std::optional<IndexPath> parseIndexPath(std::string_view text) {
  auto dot = text.find('.');
  if (dot == std::string_view::npos) {
    auto row = parseNumber(text);
    return row ? std::optional<IndexPath>(IndexPath{0, *row}) : std::nullopt;
  }
  auto section = parseNumber(text.substr(0, dot));
  auto row = parseNumber(text.substr(dot + 1));
  if (!section || !row) return std::nullopt;
  return IndexPath{*section, *row};
}

std::shared_ptr<View> step(const std::shared_ptr<View>& view, std::string_view segment) {
  auto indexPath = parseIndexPath(segment);
  if (indexPath) {
    if (auto table = std::dynamic_pointer_cast<TableView>(view)) return table->cellForRowAtIndexPath(*indexPath);
    if (auto collection = std::dynamic_pointer_cast<CollectionView>(view)) {
      return collection->cellForItemAtIndexPath(*indexPath);
    }
  }
  return view->viewWithName(segment);
}

}  // namespace

std::shared_ptr<View> UiDriver::findView(const std::string& path, Error* error) const {
  auto screen = application_.window().topScreen();
  if (!screen) {
    uiError(error, UiErrorCode::NoScreen, "no screen is on show");
    return nullptr;
  }
  std::string_view rest = path;
  auto slash = rest.find('/');
  std::string_view first = rest.substr(0, slash);
  if (first.empty()) {
    uiError(error, UiErrorCode::BadPath, "empty name in '" + path + "'");
    return nullptr;
  }
  auto view = screen->outletNamed(first);
  if (!view) view = screen->view()->viewWithName(first);
  if (!view && first == kRootViewName) view = screen->view();
  while (view && slash != std::string_view::npos) {
    rest = rest.substr(slash + 1);
    slash = rest.find('/');
    view = step(view, rest.substr(0, slash));
  }
  if (!view) {
    uiError(error, UiErrorCode::NoSuchOutlet, screen->identifier() + " has no '" + path + "'");
    return nullptr;
  }
  return view;
}

std::shared_ptr<View> UiDriver::reachableView(const std::string& path, Error* error) const {
  if (application_.window().visibleAlert()) {
    uiError(error, UiErrorCode::NotInteractive, "an alert covers the screen");
    return nullptr;
  }
  auto view = findView(path, error);
  // A finger does not reach a view faded out to (nearly) nothing, or one inside such a view.
  for (const View* level = view.get(); level != nullptr; level = level->superview()) {
    if (level->alpha() <= kTransparentAlpha) {
      uiError(error, UiErrorCode::NotInteractive, "'" + path + "' is transparent");
      return nullptr;
    }
  }
  return view;
}

bool UiDriver::tap(const std::string& path, Error* error) {
  auto view = reachableView(path, error);
  return view && view->performTap(error);
}

bool UiDriver::swipe(const std::string& path, SwipeDirection direction, Error* error) {
  auto view = reachableView(path, error);
  return view && view->performSwipe(direction, error);
}

bool UiDriver::setOn(const std::string& path, bool on, Error* error) {
  auto view = reachableView(path, error);
  if (!view) return false;
  auto control = std::dynamic_pointer_cast<Switch>(view);
  if (!control) return uiError(error, UiErrorCode::WrongKind, "'" + path + "' is a " + view->kind() + ", not a switch");
  return control->performSetOn(on, error);
}

std::shared_ptr<TextInput> UiDriver::reachableInput(const std::string& path, Error* error) const {
  auto view = reachableView(path, error);
  if (!view) return nullptr;
  auto input = std::dynamic_pointer_cast<TextInput>(view);
  if (!input) uiError(error, UiErrorCode::WrongKind, "'" + path + "' is a " + view->kind() + ", not a text input");
  return input;
}

bool UiDriver::setText(const std::string& path, const std::string& text, Error* error) {
  auto input = reachableInput(path, error);
  return input && input->performSetText(text, error);
}

bool UiDriver::setEditing(const std::string& path, bool editing, Error* error) {
  auto input = reachableInput(path, error);
  return input && input->performSetEditing(editing, error);
}

bool UiDriver::pressReturn(const std::string& path, Error* error) {
  auto input = reachableInput(path, error);
  if (!input) return false;
  input->pressReturn();
  return true;
}

bool UiDriver::selectRow(const std::string& path, const IndexPath& indexPath, Error* error) {
  auto view = reachableView(path, error);
  if (!view) return false;
  auto table = std::dynamic_pointer_cast<TableView>(view);
  if (!table) return uiError(error, UiErrorCode::WrongKind, "'" + path + "' is a " + view->kind() + ", not a table");
  return table->performSelectRow(indexPath, error);
}

bool UiDriver::tapAlertAction(const std::string& title, Error* error) {
  auto alert = std::dynamic_pointer_cast<AlertController>(application_.window().visibleAlert());
  if (!alert) return uiError(error, UiErrorCode::NoAlert, "no alert is on show");
  return alert->performActionWithTitle(title, error);
}

Value UiDriver::snapshot() const { return Snapshot::take(application_); }

}  // namespace quillet::platform
