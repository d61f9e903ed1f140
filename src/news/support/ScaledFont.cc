#include "news/support/ScaledFont.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "platform/ui/Device.h"
#include "platform/ui/Screen.h"

namespace quillet::news {

namespace {

constexpr std::array<const char*, 9> kWeights = {"UltraLight", "Thin", "Light", "Regular", "Medium",
                                                 "Semibold",   "Bold", "Heavy", "Black"};
constexpr int kFirstWeightStyle = 5;

constexpr std::array<const char*, 5> kCustomFonts = {"Roboto-Black", "Roboto-Bold", "Roboto-Light", "Roboto-Medium",
                                                     "Roboto-Regular"};

}  // namespace

bool ScaledFont::screensSetFonts() {
  return platform::Device::current().userInterfaceIdiom == platform::UserInterfaceIdiom::Phone;
}

double ScaledFont::multiplier() {
  const platform::Screen& screen = platform::Screen::main();
  return std::min(screen.width, screen.height) / 320.0;
}

std::optional<std::string> ScaledFont::style(int style) {
  if (style < 0 || style >= static_cast<int>(kCustomFonts.size())) return std::nullopt;
  return kCustomFonts[static_cast<size_t>(style)];
}

std::optional<platform::Font> ScaledFont::scaledSystemFontWithStyle(int style, double size) {
  const int index = style - kFirstWeightStyle;
  if (index < 0 || index >= static_cast<int>(kWeights.size())) return std::nullopt;
  std::string name = "System-";
  name += kWeights[static_cast<size_t>(index)];
  return platform::Font{std::move(name), std::trunc(size * multiplier())};
}

std::optional<platform::Font> ScaledFont::scaledCustomFontWithStyle(int style, double size) {
  auto name = ScaledFont::style(style);
  if (!name) return std::nullopt;
  return platform::Font{*name, size * multiplier()};
}

std::optional<platform::Font> ScaledFont::Caption4WithStyle(int style) { return scaledCustomFontWithStyle(style, 8); }

}  // namespace quillet::news
