#pragma once

#include <memory>
#include <string>

#include "platform/ui/IndexPath.h"
#include "platform/ui/View.h"
#include "platform/value/Error.h"
#include "platform/value/Value.h"

namespace quillet::platform {

class Application;
class TextInput;

// The hand that plays the phone: finds a control of the top screen by path
// and acts on it as a finger would. A path is an outlet name ("btnRefresh"),
// or a view named inside the screen's root view, followed by "/"-separated
// steps: a row of a table or collection ("3" in section 0, or "1.3") and
// named subviews ("tableCategory/3/btnCheck"). "view", when no outlet or
// subview has that name, is the screen's root view (a touch on the screen).
//
// Every action returns false with a ui error (never a crash) for an unknown
// path, a control of the wrong kind, a hidden or disabled control, a row
// out of range, or a screen covered by an alert. The application is held
// by reference; its owner keeps it alive. Main run loop thread only.
class UiDriver {
 public:
  static constexpr const char* kRootViewName = "view";

  explicit UiDriver(Application& application) : application_(application) {}

  std::shared_ptr<View> findView(const std::string& path, Error* error = nullptr) const;

  bool tap(const std::string& path, Error* error = nullptr);
  bool swipe(const std::string& path, SwipeDirection direction, Error* error = nullptr);
  bool setOn(const std::string& path, bool on, Error* error = nullptr);
  bool setText(const std::string& path, const std::string& text, Error* error = nullptr);
  // The finger goes into a text input (begin) or leaves it (end), running its editing hooks.
  bool setEditing(const std::string& path, bool editing, Error* error = nullptr);
  // Presses the keyboard's Return key in the text field or box at `path`.
  bool pressReturn(const std::string& path, Error* error = nullptr);
  bool selectRow(const std::string& path, const IndexPath& indexPath, Error* error = nullptr);
  bool tapAlertAction(const std::string& title, Error* error = nullptr);

  Value snapshot() const;

 private:
  // findView, refusing while an alert covers the screen.
  std::shared_ptr<View> reachableView(const std::string& path, Error* error) const;
  // reachableView, as a text input.
  std::shared_ptr<TextInput> reachableInput(const std::string& path, Error* error) const;

  Application& application_;
};

}  // namespace quillet::platform
