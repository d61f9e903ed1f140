#include "platform/image/ImageDecoder.h"

#include <gtest/gtest.h>

#include <cstring>

#include "platform/image/Image.h"
#include "platform/image/TestImages.h"
#include "platform/value/Json.h"
#include "platform/value/Value.h"

namespace quillet::platform {
namespace {

TEST(ImageDecoderTest, ReadsHeaderAndDecodesEachFormat) {
  struct Case {
    test::Bytes bytes;
    std::string format;
    int width, height, components;
  };
  const Case cases[] = {{test::png(5, 3), "png", 5, 3, 3},
                        {test::jpeg(16, 8), "jpeg", 16, 8, 3},
                        {test::gif(), "gif", 1, 1, 4},
                        {test::bmp(7, 2), "bmp", 7, 2, 3}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.format);
    Error error;
    auto info = ImageDecoder::info(c.bytes, &error);
    ASSERT_TRUE(info) << error.description();
    EXPECT_EQ(info->format, c.format);
    EXPECT_EQ(info->width, c.width);
    EXPECT_EQ(info->height, c.height);
    EXPECT_EQ(info->bitsPerComponent, 8);
    auto bitmap = ImageDecoder::decode(c.bytes, &error);
    ASSERT_TRUE(bitmap) << error.description();
    EXPECT_EQ(bitmap->width, c.width);
    EXPECT_EQ(bitmap->height, c.height);
    EXPECT_EQ(bitmap->componentsPerPixel, c.components);
    EXPECT_EQ(bitmap->pixels.size(), bitmap->bytesPerRow() * c.height);
  }
  // Lossless formats give the pixels back.
  auto bitmap = ImageDecoder::decode(test::png(5, 3));
  EXPECT_EQ(bitmap->pixels, test::pixelsRGB(5, 3));
  EXPECT_EQ(ImageDecoder::decode(test::gif())->pixels, (test::Bytes{0xff, 0xff, 0xff, 0xff}));
}

TEST(ImageDecoderTest, SixteenBitPngKeepsItsDepth) {
  const auto bytes = test::png16(3, 2);
  auto info = ImageDecoder::info(bytes);
  ASSERT_TRUE(info);
  EXPECT_EQ(info->bitsPerComponent, 16);
  auto bitmap = ImageDecoder::decode(bytes);
  ASSERT_TRUE(bitmap);
  EXPECT_EQ(bitmap->bitsPerComponent, 16);
  EXPECT_EQ(bitmap->componentsPerPixel, 1);
  ASSERT_EQ(bitmap->pixels.size(), 3u * 2u * 2u);
  uint16_t last;
  std::memcpy(&last, bitmap->pixels.data() + 10, 2);
  EXPECT_EQ(last, 0x0201);  // x 2, y 1, in native order
}

TEST(ImageDecoderTest, BadInputIsAnErrorNotACrash) {
  const auto png = test::png(40, 40);
  const auto jpeg = test::jpeg(8, 8);
  const test::Bytes inputs[] = {{},
                                {'h', 'e', 'l', 'l', 'o'},
                                {0x89, 'P', 'N', 'G'},
                                test::Bytes(png.begin(), png.begin() + 60),
                                test::Bytes(jpeg.begin(), jpeg.begin() + 30)};
  for (const auto& input : inputs) {
    Error error;
    EXPECT_EQ(ImageDecoder::decode(input, &error), nullptr);
    EXPECT_EQ(error.domain, ImageDecoder::kErrorDomain);
    EXPECT_NE(error.localizedDescription().find("Image could not be read: "), std::string::npos);
  }
  EXPECT_EQ(Image::imageWithData(test::Bytes{'B', 'M'}, 2), nullptr);
}

TEST(ImageDecoderTest, HugeHeaderIsRefusedBeforeDecoding) {
  // A BMP header claiming 20000 x 20000 pixels with no body.
  auto bytes = test::bmp(1, 1);
  auto put32 = [&](size_t at, uint32_t v) {
    for (int i = 0; i < 4; ++i) bytes[at + i] = static_cast<uint8_t>(v >> (8 * i));
  };
  put32(18, 20000);
  put32(22, 20000);
  Error error;
  EXPECT_FALSE(ImageDecoder::info(bytes, &error));
  EXPECT_EQ(error.code, ImageDecoder::kTooLarge);
  EXPECT_EQ(ImageDecoder::decode(bytes, &error), nullptr);
}

TEST(ImageDecoderTest, ImageCarriesSizeScaleAndRidesInAValue) {
  auto encoded = Image::imageWithData(test::png(160, 120), 2);
  ASSERT_TRUE(encoded);
  EXPECT_FALSE(encoded->isDecoded());
  EXPECT_EQ(encoded->width(), 80);
  EXPECT_EQ(encoded->height(), 60);
  EXPECT_EQ(encoded->description(), "<Image 160x120 @2x>");
  auto decoded = Image::imageWithBitmap(ImageDecoder::decode(encoded->data()), 3);
  ASSERT_TRUE(decoded && decoded->isDecoded());
  EXPECT_EQ(decoded->pixelWidth(), 160);

  const Value value = Value::object(encoded);
  EXPECT_TRUE(value.isObject());
  EXPECT_EQ(value.objectAs<Image>(), encoded);
  EXPECT_EQ(value.description(), "<Image 160x120 @2x>");
  EXPECT_EQ(value, Value::object(encoded));
  EXPECT_FALSE(value == Value::object(decoded));
  EXPECT_TRUE(Value::object(nullptr).isNil());
  EXPECT_EQ(Value("x").objectAs<Image>(), nullptr);
  Error error;
  EXPECT_EQ(jsonEncode(Value::array({value}), false, &error), "");
}

}  // namespace
}  // namespace quillet::platform
