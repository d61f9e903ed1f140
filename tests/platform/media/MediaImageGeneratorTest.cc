#include "platform/media/MediaImageGenerator.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>

#include "platform/media/MediaError.h"
#include "support/TestPaths.h"

namespace quillet::platform {
namespace {

const std::filesystem::path kVideos = quillet::testing::TestPaths::testVideosDirectory();

std::array<int, 4> pixel(const Bitmap& bitmap, int x, int y) {
  const uint8_t* p = bitmap.pixels.data() + y * bitmap.bytesPerRow() + x * 4;
  return {p[0], p[1], p[2], p[3]};
}

// Lossy coding moves colours a little: each component must be near 0 or 255.
void expectColour(const Bitmap& bitmap, int x, int y, std::array<int, 3> rgb) {
  auto p = pixel(bitmap, x, y);
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(p[i], rgb[i], 40) << "component " << i << " at " << x << "," << y;
  EXPECT_EQ(p[3], 255);
}

TEST(MediaImageGeneratorTest, ThePictureAtATimeIsTheFrameShownThen) {
  MediaImageGenerator generator(MediaAsset::assetWithURL((kVideos / "colours.mp4").string()));
  generator.setAppliesPreferredTrackTransform(true);
  double actual = -1;
  Error error;
  auto green = generator.copyImageAtTime(0.5, &actual, &error);
  ASSERT_TRUE(green) << error.description();
  EXPECT_EQ(green->width, 160);
  EXPECT_EQ(green->height, 120);
  EXPECT_EQ(green->componentsPerPixel, 4);
  EXPECT_EQ(green->pixels.size(), 160u * 120u * 4u);
  EXPECT_NEAR(actual, 0.5, 1e-6);
  expectColour(*green, 80, 60, {0, 255, 0});

  // Between frames: the earlier one; the last red frame starts at 0.4 s.
  auto red = generator.copyImageAtTime(0.47, &actual, nullptr);
  ASSERT_TRUE(red);
  EXPECT_NEAR(actual, 0.4, 1e-6);
  expectColour(*red, 5, 5, {255, 0, 0});
  // Past the end: the last frame.
  ASSERT_TRUE(generator.copyImageAtTime(9.0, &actual, nullptr));
  EXPECT_NEAR(actual, 1.9, 1e-6);
}

TEST(MediaImageGeneratorTest, TheDisplayRotationIsAppliedOnlyWhenAsked) {
  // Stored red above blue, 160x60 each, shown turned a quarter counter-clockwise.
  MediaImageGenerator generator(MediaAsset::assetWithURL((kVideos / "halves.mp4").string()));
  auto stored = generator.copyImageAtTime(0.5, nullptr, nullptr);
  ASSERT_TRUE(stored);
  EXPECT_EQ(stored->width, 160);
  EXPECT_EQ(stored->height, 120);
  expectColour(*stored, 80, 10, {255, 0, 0});
  expectColour(*stored, 80, 110, {0, 0, 255});

  generator.setAppliesPreferredTrackTransform(true);
  auto upright = generator.copyImageAtTime(0.5, nullptr, nullptr);
  ASSERT_TRUE(upright);
  EXPECT_EQ(upright->width, 120);
  EXPECT_EQ(upright->height, 160);
  expectColour(*upright, 10, 80, {255, 0, 0});
  expectColour(*upright, 110, 80, {0, 0, 255});
}

TEST(MediaImageGeneratorTest, AMissingFileGivesNoPictureAndAnError) {
  MediaImageGenerator generator(MediaAsset::assetWithURL((kVideos / "missing.mp4").string()));
  Error error;
  double actual = -1;
  EXPECT_FALSE(generator.copyImageAtTime(0.5, &actual, &error));
  EXPECT_EQ(error.domain, kMediaErrorDomain);
  EXPECT_EQ(error.code, kMediaErrorCannotOpen);
  EXPECT_EQ(actual, -1);
  EXPECT_FALSE(generator.copyImageAtTime(0.5, nullptr, nullptr));  // no out arguments: no crash
}

}  // namespace
}  // namespace quillet::platform
