// The share's screenshot of a card screen (375 x 667 points at scale 2):
// drawing the views with Cairo, then the PNG of the driver's "screenshot"
// and the quality-1.0 JPEG of the chat app's file.
#include <benchmark/benchmark.h>

#include <memory>

#include "platform/image/ImageEncoder.h"
#include "platform/render/ScreenRenderer.h"
#include "platform/ui/Label.h"
#include "platform/ui/View.h"

namespace quillet::news {
namespace {

using platform::Color;
using platform::Label;
using platform::Rect;

std::shared_ptr<platform::View> cardScreen() {
  auto root = std::make_shared<platform::View>("view");
  root->setFrame(Rect{0, 0, 375, 667});
  root->setBackgroundColor(Color::whiteColor());
  auto bar = std::make_shared<platform::View>("NavView");
  bar->setFrame(Rect{0, 0, 375, 64});
  bar->setBackgroundColor(Color::blackColor());
  root->addSubview(bar);
  auto label = [&](const char* text, Rect frame, const char* font, double size, int lines) {
    auto view = std::make_shared<Label>("label");
    view->setText(text);
    view->setFrame(frame);
    view->setFont(platform::Font{font, size});
    view->setNumberOfLines(lines);
    root->addSubview(view);
  };
  label("Menu", Rect{0, 20, 60, 44}, "System-Regular", 17, 1);
  label("Students map the moss on every bridge in town", Rect{12, 297, 351, 56}, "System-Bold", 20, 0);
  label("Posted By Priya Lanning | 08th Oct 2016", Rect{12, 355, 351, 18}, "System-Regular", 10, 1);
  label(
      "A class at the Fernhollow institute catalogued eighteen kinds of moss on the town's bridges and "
      "found two that prefer iron railings.",
      Rect{12, 377, 351, 200}, "System-Regular", 16, 0);
  return root;
}

void BM_RenderCardScreen(benchmark::State& state) {
  auto screen = cardScreen();
  for (auto _ : state) benchmark::DoNotOptimize(platform::ScreenRenderer::renderView(*screen, 2.0));
}
BENCHMARK(BM_RenderCardScreen)->Unit(benchmark::kMillisecond);

void BM_EncodeScreenshotPNG(benchmark::State& state) {
  auto bitmap = platform::ScreenRenderer::renderView(*cardScreen(), 2.0);
  for (auto _ : state) benchmark::DoNotOptimize(platform::ImageEncoder::PNGRepresentation(*bitmap));
}
BENCHMARK(BM_EncodeScreenshotPNG)->Unit(benchmark::kMillisecond);

void BM_EncodeScreenshotJPEGBest(benchmark::State& state) {
  auto bitmap = platform::ScreenRenderer::renderView(*cardScreen(), 2.0);
  for (auto _ : state) benchmark::DoNotOptimize(platform::ImageEncoder::JPEGRepresentation(*bitmap, 1.0));
}
BENCHMARK(BM_EncodeScreenshotJPEGBest)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace quillet::news
