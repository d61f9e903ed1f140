#pragma once

#include <filesystem>
#include <memory>

#include "platform/image/Bitmap.h"
#include "platform/image/Image.h"
#include "platform/ui/View.h"
#include "platform/value/Error.h"

namespace quillet::platform {

class Application;

// Draws what a view shows into a picture, as the phone's screenshot does:
// the view and its subviews in order (later ones on top), each at its frame
// (a view without a frame fills its superview), skipping hidden views and
// those of alpha 0, with their alpha applied. Drawn: background colours;
// labels', buttons' and text inputs' text in their colour and font size
// (bold for the heavier weights; placeholders in grey); image views' loaded
// images scaled to their frame. Not drawn: named images that were never
// loaded, corner radii, alerts. Main run loop thread only (it reads views).
class ScreenRenderer {
 public:
  // The picture of `view` at `scale` pixels per point: its frame's size (the
  // main screen's size when it has none) times the scale, rounded up, as
  // 8-bit RGBA. Null when that size is empty.
  static std::shared_ptr<const Bitmap> renderView(const View& view, double scale);
  // The same as an image of that scale.
  static std::shared_ptr<const Image> imageWithView(const View& view, double scale);
  // The screen the reader sees in the application's window, at the main
  // screen's scale, written to `path` as PNG atomically. False and `error`
  // when no screen is on show or the file cannot be written.
  static bool writeScreenshot(Application& application, const std::filesystem::path& path, Error* error = nullptr);
};

}  // namespace quillet::platform
