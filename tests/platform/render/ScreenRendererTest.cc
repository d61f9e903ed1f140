// Drawing views into pictures, and encoding them as PNG and JPEG. (Writing
// the screen on show is played end to end by the driver's content script.)
#include <gtest/gtest.h>

#include "platform/image/BitmapPixels.h"
#include "platform/image/ImageDecoder.h"
#include "platform/image/ImageEncoder.h"
#include "platform/render/ScreenRenderer.h"
#include "platform/ui/ImageView.h"
#include "platform/ui/Label.h"

namespace quillet::platform {
namespace {

struct Pixel {
  int r, g, b, a;
  bool operator==(const Pixel&) const = default;
};

Pixel at(const Bitmap& bitmap, int x, int y) {
  const uint8_t* p =
      &bitmap.pixels[(static_cast<size_t>(y) * static_cast<size_t>(bitmap.width) + static_cast<size_t>(x)) * 4];
  return {p[0], p[1], p[2], p[3]};
}

std::shared_ptr<View> colored(const char* name, Color color, Rect frame) {
  auto view = std::make_shared<View>(name);
  view->setBackgroundColor(color);
  view->setFrame(frame);
  return view;
}

std::shared_ptr<const Bitmap> decoded(const std::vector<uint8_t>& bytes) {
  Error error;
  auto bitmap = ImageDecoder::decode(bytes, &error);
  EXPECT_TRUE(bitmap) << error.description();
  return bitmap ? std::make_shared<const Bitmap>(BitmapPixels::rgba8(*bitmap)) : nullptr;
}

TEST(ScreenRendererTest, DrawsVisibleViewsInOrderAtTheScale) {
  auto root = colored("root", Color::whiteColor(), Rect{0, 0, 100, 50});
  root->addSubview(colored("red", Color::redColor(), Rect{10, 10, 20, 10}));
  auto hidden = colored("hidden", Color::blackColor(), Rect{0, 0, 100, 50});
  hidden->setHidden(true);
  root->addSubview(hidden);
  auto clear = colored("clear", Color::blackColor(), Rect{0, 0, 100, 50});
  clear->setAlpha(0);
  root->addSubview(clear);
  auto half = colored("half", Color::blackColor(), Rect{60, 0, 40, 50});
  half->setAlpha(0.5);
  half->addSubview(colored("inner", Color::whiteColor(), Rect{0, 0, 10, 10}));  // in its parent's frame
  root->addSubview(half);
  auto picture = std::make_shared<Bitmap>();
  picture->width = picture->height = 2;
  picture->componentsPerPixel = 3;
  picture->pixels = {0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 255, 0};
  auto image = std::make_shared<ImageView>("image");
  image->setFrame(Rect{40, 30, 10, 10});
  image->setImage(Image::imageWithBitmap(picture, 1));
  root->addSubview(image);
  auto label = std::make_shared<Label>("label");
  label->setFrame(Rect{0, 30, 40, 20});
  label->setText("WWW");
  label->setTextColor(Color::blackColor());
  label->setFont(Font{"System-Bold", 18});
  root->addSubview(label);

  auto bitmap = ScreenRenderer::renderView(*root, 2);
  ASSERT_TRUE(bitmap);
  EXPECT_EQ(bitmap->width, 200);
  EXPECT_EQ(bitmap->height, 100);
  EXPECT_EQ(at(*bitmap, 0, 0), (Pixel{255, 255, 255, 255}));
  EXPECT_EQ(at(*bitmap, 30, 30), (Pixel{255, 0, 0, 255}));
  EXPECT_EQ(at(*bitmap, 90, 70), (Pixel{0, 255, 0, 255}));
  EXPECT_NEAR(at(*bitmap, 150, 80).r, 128, 2);                  // half black over white
  EXPECT_EQ(at(*bitmap, 125, 5), (Pixel{255, 255, 255, 255}));  // white over white, both half
  int dark = 0;
  for (int y = 60; y < 100; ++y) {
    for (int x = 0; x < 80; ++x) dark += at(*bitmap, x, y).r < 100;
  }
  EXPECT_GT(dark, 20) << "the label's text is drawn";

  // PNG: lossless round trip.
  Error error;
  auto png = ImageEncoder::PNGRepresentation(*bitmap, &error);
  ASSERT_TRUE(png) << error.description();
  auto back = decoded(*png);
  ASSERT_TRUE(back);
  EXPECT_EQ(back->pixels, bitmap->pixels);

  EXPECT_FALSE(ScreenRenderer::renderView(View("empty"), 2) == nullptr);  // no frame: the screen's size
  auto none = colored("none", Color::redColor(), Rect{0, 0, 0, 10});
  EXPECT_EQ(ScreenRenderer::renderView(*none, 2), nullptr);
}

TEST(ScreenRendererTest, JpegKeepsSizeAndColourAndQualityCostsBytes) {
  Bitmap noisy;
  noisy.width = 64;
  noisy.height = 32;
  noisy.componentsPerPixel = 1;  // grey
  noisy.pixels.resize(64 * 32);
  for (size_t i = 0; i < noisy.pixels.size(); ++i) noisy.pixels[i] = static_cast<uint8_t>((i * 7919) % 251);
  Error error;
  auto best = ImageEncoder::JPEGRepresentation(noisy, 1.0, &error);
  auto worst = ImageEncoder::JPEGRepresentation(noisy, 0.0, &error);
  ASSERT_TRUE(best && worst) << error.description();
  EXPECT_GT(best->size(), worst->size());
  auto back = decoded(*best);
  ASSERT_TRUE(back);
  EXPECT_EQ(back->width, 64);
  EXPECT_EQ(back->height, 32);
  EXPECT_NEAR(at(*back, 5, 3).g, noisy.pixels[3 * 64 + 5], 12);

  Bitmap broken;
  broken.width = 10;
  broken.height = 10;  // no pixels
  EXPECT_FALSE(ImageEncoder::JPEGRepresentation(broken, 1.0, &error));
  EXPECT_EQ(error.code, ImageEncoder::kEncodeFailed);
  EXPECT_FALSE(ImageEncoder::PNGRepresentation(broken, &error));
}

}  // namespace
}  // namespace quillet::platform
