#pragma once

#include <memory>
#include <string>

#include "platform/ui/DocumentInteractionControllerDelegate.h"
#include "platform/ui/Rect.h"
#include "platform/ui/View.h"

namespace quillet::platform {

class Application;

// Offers a local file to the other apps of the phone: the file's URL, its
// type identifier (UTI), and the open-in menu shown from a rectangle of a
// view. Showing the menu records it and posts "openInMenuShown" (text: the
// URL; info: {url, UTI, rect}) to the shared application's event stream;
// the driver closes it with dismissMenu. The delegate is held weakly.
// Main run loop thread only.
class DocumentInteractionController : public std::enable_shared_from_this<DocumentInteractionController> {
 public:
  // `fileURL` as "file://<absolute path>".
  static std::shared_ptr<DocumentInteractionController> interactionControllerWithURL(std::string fileURL);
  explicit DocumentInteractionController(std::string fileURL);

  const std::string& URL() const { return url_; }
  const std::string& UTI() const { return uti_; }
  void setUTI(std::string uti) { uti_ = std::move(uti); }
  void setDelegate(std::weak_ptr<DocumentInteractionControllerDelegate> delegate) { delegate_ = std::move(delegate); }

  // Shows the open-in menu; true (the stand-in always has an app to offer).
  bool presentOpenInMenuFromRect(const Rect& rect, View& inView, bool animated);
  bool isOpenInMenuShown() const { return menuShown_; }
  const Rect& menuRect() const { return menuRect_; }
  // Phone side: the reader closes the menu; the delegate hears of it.
  void dismissMenu();

 private:
  std::string url_;
  std::string uti_;
  std::weak_ptr<DocumentInteractionControllerDelegate> delegate_;
  bool menuShown_ = false;
  Rect menuRect_;
};

}  // namespace quillet::platform
