#include "platform/render/ScreenRenderer.h"

#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>
#include <vector>

#include "platform/image/BitmapPixels.h"
#include "platform/image/CairoBitmap.h"
#include "platform/image/ImageDecoder.h"
#include "platform/image/ImageEncoder.h"
#include "platform/ui/Application.h"
#include "platform/ui/Button.h"
#include "platform/ui/ImageView.h"
#include "platform/ui/Label.h"
#include "platform/ui/Screen.h"
#include "platform/ui/TextInput.h"

namespace quillet::platform {

namespace {

constexpr double kDefaultFontSize = 17;
constexpr const char* kFontFamily = "sans-serif";
const Color kTintColor = Color::rgb255(0, 122, 255);
const Color kPlaceholderColor = Color::rgb255(199, 199, 205);

enum class Align { Left, Centre };

struct TextStyle {
  Align align = Align::Left;
  bool centredVertically = true;
  double insetX = 0;
  double insetY = 0;
  int maxLines = 1;  // 0: as many as fit
};

void setColor(cairo_t* cr, const Color& color) {
  cairo_set_source_rgba(cr, color.red, color.green, color.blue, color.alpha);
}

bool isHeavy(const std::string& fontName) {
  for (std::string_view weight : {"Medium", "Semibold", "Bold", "Heavy", "Black"}) {
    if (fontName.find(weight) != std::string::npos) return true;
  }
  return false;
}

double advance(cairo_t* cr, const std::string& text) {
  cairo_text_extents_t extents;
  cairo_text_extents(cr, text.c_str(), &extents);
  return extents.x_advance;
}

// The text broken into lines that fit `width` at word boundaries (a word
// wider than the line stands alone); one line joins the paragraphs.
std::vector<std::string> wrap(cairo_t* cr, const std::string& text, double width, int maxLines) {
  std::vector<std::string> lines;
  if (maxLines == 1) {
    std::string joined = text;
    std::replace(joined.begin(), joined.end(), '\n', ' ');
    lines.push_back(joined);
    return lines;
  }
  size_t start = 0;
  while (start <= text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    const std::string paragraph = text.substr(start, end - start);
    std::string line;
    size_t wordStart = 0;
    while (wordStart <= paragraph.size()) {
      size_t wordEnd = paragraph.find(' ', wordStart);
      if (wordEnd == std::string::npos) wordEnd = paragraph.size();
      const std::string word = paragraph.substr(wordStart, wordEnd - wordStart);
      const std::string candidate = line.empty() ? word : line + " " + word;
      if (!line.empty() && advance(cr, candidate) > width) {
        lines.push_back(line);
        line = word;
      } else {
        line = candidate;
      }
      wordStart = wordEnd + 1;
    }
    lines.push_back(line);
    start = end + 1;
  }
  if (maxLines > 0 && lines.size() > static_cast<size_t>(maxLines)) lines.resize(static_cast<size_t>(maxLines));
  return lines;
}

void drawText(cairo_t* cr, const std::string& text, const std::optional<Font>& font, const Color& color,
              const Rect& box, const TextStyle& style) {
  if (text.empty() || box.width <= 0 || box.height <= 0) return;
  cairo_save(cr);
  cairo_rectangle(cr, 0, 0, box.width, box.height);
  cairo_clip(cr);
  cairo_select_font_face(cr, kFontFamily, CAIRO_FONT_SLANT_NORMAL,
                         font && isHeavy(font->name) ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
  cairo_set_font_size(cr, font && font->size > 0 ? font->size : kDefaultFontSize);
  cairo_font_extents_t metrics;
  cairo_font_extents(cr, &metrics);
  const double width = box.width - 2 * style.insetX;
  const std::vector<std::string> lines = wrap(cr, text, width, style.maxLines);
  const double total = metrics.height * static_cast<double>(lines.size());
  const double top = style.centredVertically ? (box.height - total) / 2 : style.insetY;
  setColor(cr, color);
  for (size_t i = 0; i < lines.size(); ++i) {
    const double x = style.align == Align::Centre ? (box.width - advance(cr, lines[i])) / 2 : style.insetX;
    cairo_move_to(cr, x, top + metrics.ascent + metrics.height * static_cast<double>(i));
    cairo_show_text(cr, lines[i].c_str());
  }
  cairo_restore(cr);
}

void drawImage(cairo_t* cr, const Image& image, const Rect& box) {
  auto pixels = BitmapPixels::pixelsOf(image);
  if (!pixels || pixels->width <= 0 || pixels->height <= 0) return;
  CairoBitmap::Surface surface = CairoBitmap::surfaceFromBitmap(*pixels);
  if (!surface) return;
  cairo_save(cr);
  cairo_rectangle(cr, 0, 0, box.width, box.height);
  cairo_clip(cr);
  cairo_scale(cr, box.width / pixels->width, box.height / pixels->height);
  cairo_set_source_surface(cr, surface.get(), 0, 0);
  cairo_paint(cr);
  cairo_restore(cr);
}

// What the view's kind draws over its background.
void drawContent(cairo_t* cr, const View& view, const Rect& box) {
  if (const auto* imageView = dynamic_cast<const ImageView*>(&view)) {
    if (imageView->loadedImage()) drawImage(cr, *imageView->loadedImage(), box);
  } else if (const auto* label = dynamic_cast<const Label*>(&view)) {
    drawText(cr, label->text(), label->font(), label->textColor(), box,
             TextStyle{Align::Left, true, 0, 0, label->numberOfLines()});
  } else if (const auto* button = dynamic_cast<const Button*>(&view)) {
    drawText(cr, button->title(), button->font(), button->titleColor().value_or(kTintColor), box,
             TextStyle{Align::Centre, true, 0, 0, 1});
  } else if (const auto* input = dynamic_cast<const TextInput*>(&view)) {
    const bool multiLine = view.kind() == "textView";
    const TextStyle style = multiLine ? TextStyle{Align::Left, false, 5, 8, 0} : TextStyle{Align::Left, true, 5, 0, 1};
    if (input->text().empty()) {
      drawText(cr, input->placeholder(), input->font(), kPlaceholderColor, box, style);
    } else {
      drawText(cr, input->text(), input->font(), input->textColor(), box, style);
    }
  }
}

// Draws `view` at `frame` (in the coordinates of what is drawn so far), then its subviews.
void drawView(cairo_t* cr, const View& view, const Rect& frame) {
  if (view.isHidden() || view.alpha() <= 0) return;
  cairo_save(cr);
  cairo_translate(cr, frame.x, frame.y);
  const bool translucent = view.alpha() < 1;
  if (translucent) cairo_push_group(cr);
  const Rect box{0, 0, frame.width, frame.height};
  if (view.backgroundColor()) {
    setColor(cr, *view.backgroundColor());
    cairo_rectangle(cr, 0, 0, box.width, box.height);
    cairo_fill(cr);
  }
  drawContent(cr, view, box);
  for (const auto& subview : view.subviews()) {
    if (subview) drawView(cr, *subview, subview->frame().value_or(box));
  }
  if (translucent) {
    cairo_pop_group_to_source(cr);
    cairo_paint_with_alpha(cr, view.alpha());
  }
  cairo_restore(cr);
}

}  // namespace

std::shared_ptr<const Bitmap> ScreenRenderer::renderView(const View& view, double scale) {
  const Screen& screen = Screen::main();
  const Rect frame = view.frame().value_or(Rect{0, 0, screen.width, screen.height});
  if (scale <= 0) scale = 1;
  const int width = static_cast<int>(std::ceil(frame.width * scale));
  const int height = static_cast<int>(std::ceil(frame.height * scale));
  if (width <= 0 || height <= 0 || width > ImageDecoder::kMaxDimension || height > ImageDecoder::kMaxDimension) {
    return nullptr;
  }
  CairoBitmap::Surface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height));
  if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) return nullptr;
  cairo_t* cr = cairo_create(surface.get());
  cairo_scale(cr, scale, scale);
  drawView(cr, view, Rect{0, 0, frame.width, frame.height});
  cairo_destroy(cr);
  return std::make_shared<const Bitmap>(CairoBitmap::bitmapFromSurface(surface.get()));
}

std::shared_ptr<const Image> ScreenRenderer::imageWithView(const View& view, double scale) {
  return Image::imageWithBitmap(renderView(view, scale), scale > 0 ? scale : 1);
}

bool ScreenRenderer::writeScreenshot(Application& application, const std::filesystem::path& path, Error* error) {
  auto screen = application.window().topScreen();
  auto bitmap = screen ? renderView(*screen->view(), Screen::main().scale) : nullptr;
  if (!bitmap) {
    if (error) {
      *error = Error::withDescription(ImageDecoder::kErrorDomain, ImageEncoder::kEncodeFailed,
                                      "screenshot: no screen on show");
    }
    return false;
  }
  return ImageEncoder::writePNG(*bitmap, path, error);
}

}  // namespace quillet::platform

// The font configuration library behind the text drawing keeps process-wide
// caches that it never frees; the leak checker of sanitizer builds is told
// to ignore them (the hook is read only when a leak checker runs).
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig.so\n"; }
