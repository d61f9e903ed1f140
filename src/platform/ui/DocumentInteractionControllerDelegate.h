#pragma once

namespace quillet::platform {

class DocumentInteractionController;

// Told about the open-in menu of a document controller. Every hook has an
// empty default. Main run loop thread.
class DocumentInteractionControllerDelegate {
 public:
  virtual ~DocumentInteractionControllerDelegate() = default;
  virtual void documentInteractionControllerDidDismissOpenInMenu(DocumentInteractionController&) {}
};

}  // namespace quillet::platform
