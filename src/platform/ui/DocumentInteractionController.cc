#include "platform/ui/DocumentInteractionController.h"

#include "platform/ui/Application.h"
#include "platform/ui/RectValue.h"

namespace quillet::platform {

std::shared_ptr<DocumentInteractionController> DocumentInteractionController::interactionControllerWithURL(
    std::string fileURL) {
  return std::make_shared<DocumentInteractionController>(std::move(fileURL));
}

DocumentInteractionController::DocumentInteractionController(std::string fileURL) : url_(std::move(fileURL)) {}

bool DocumentInteractionController::presentOpenInMenuFromRect(const Rect& rect, View& inView, bool animated) {
  menuShown_ = true;
  menuRect_ = rect;
  UiEvent event;
  event.kind = UiEvent::Kind::OpenInMenuShown;
  event.screen = inView.name();
  event.animated = animated;
  event.text = url_;
  event.info = Value::dictionary({{"url", Value(url_)}, {"UTI", Value(uti_)}, {"rect", rectValue(rect)}});
  Application::sharedApplication().events()->emit(std::move(event));
  return true;
}

void DocumentInteractionController::dismissMenu() {
  if (!menuShown_) return;
  menuShown_ = false;
  auto keepAlive = shared_from_this();
  if (auto delegate = delegate_.lock()) delegate->documentInteractionControllerDidDismissOpenInMenu(*this);
}

}  // namespace quillet::platform
