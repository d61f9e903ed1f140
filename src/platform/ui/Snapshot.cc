#include "platform/ui/Snapshot.h"

#include "platform/ui/AlertController.h"
#include "platform/ui/Application.h"
#include "platform/ui/NavigationController.h"

namespace quillet::platform {

Value Snapshot::outletsOf(const ViewController& screen) {
  Value outlets = Value::dictionary({});
  for (const auto& [name, view] : screen.outlets()) outlets.set(name, view->describe());
  return outlets;
}

Value Snapshot::take(Application& application) {
  Window& window = application.window();
  Value out = Value::dictionary({});
  Value stack = Value::array({});
  for (const auto& id : window.stackIdentifiers()) stack.append(Value(id));
  out.set("stack", std::move(stack));
  if (auto top = window.topScreen()) {
    out.set("screen", Value(top->identifier()));
    out.set("title", Value(top->title().empty() ? top->navigationItem().title : top->title()));
    if (auto navigation = top->navigationController()) {
      out.set("navigationBarHidden", Value(navigation->isNavigationBarHidden()));
    }
    out.set("outlets", outletsOf(*top));
    // The screen's own view: a form that moves while a field is edited moves this frame.
    if (top->isViewLoaded() && top->view()->frame()) out.set("viewFrame", frameValue(*top->view()->frame()));
  }
  if (auto alert = std::dynamic_pointer_cast<AlertController>(window.visibleAlert())) {
    out.set("alert", alert->describe());
  }
  out.set("badge", Value(application.applicationIconBadgeNumber()));
  out.set("state", Value(applicationStateName(application.applicationState())));
  return out;
}

}  // namespace quillet::platform
