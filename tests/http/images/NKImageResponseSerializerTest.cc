#include "http/images/NKImageResponseSerializer.h"

#include <gtest/gtest.h>

#include "http/serialization/NKSerializationError.h"
#include "platform/image/TestImages.h"

namespace quillet::http {
namespace {

using platform::Image;
namespace test = platform::test;

platform::HttpResponse reply(const std::string& type, int status = 200) {
  platform::HttpResponse response;
  response.statusCode = status;
  response.url = "http://127.0.0.1/pic";
  response.headers.set("Content-Type", type);
  return response;
}

std::shared_ptr<const Image> imageFor(const NKImageResponseSerializer& serializer, const test::Bytes& data,
                                      std::optional<platform::Error>* error = nullptr) {
  std::optional<platform::Error> ignored;
  const auto response = reply("image/png");
  return serializer.responseObjectForResponse(&response, &data, error ? error : &ignored).objectAs<Image>();
}

TEST(NKImageResponseSerializerTest, InflatesSmallImagesAndLeavesLargeOrDeepOnes) {
  auto serializer = NKImageResponseSerializer::serializer();
  EXPECT_EQ(serializer->imageScale, 2);  // the main screen's
  EXPECT_TRUE(serializer->automaticallyInflatesResponseImage);

  auto small = imageFor(*serializer, test::png(30, 20));
  ASSERT_TRUE(small);
  EXPECT_TRUE(small->isDecoded());
  EXPECT_EQ(small->width(), 15);
  EXPECT_TRUE(imageFor(*serializer, test::jpeg(1024, 1024, 30))->isDecoded());

  auto wide = imageFor(*serializer, test::bmp(1025, 1024));
  ASSERT_TRUE(wide);
  EXPECT_FALSE(wide->isDecoded());
  EXPECT_EQ(wide->pixelWidth(), 1025);
  auto deep = imageFor(*serializer, test::png16(4, 4));
  ASSERT_TRUE(deep);
  EXPECT_FALSE(deep->isDecoded());
  EXPECT_EQ(deep->bitsPerComponent(), 16);

  // A body that fails after a good header stays as the header described it.
  auto png = test::png(30, 20);
  png.resize(60);
  auto truncated = imageFor(*serializer, png);
  ASSERT_TRUE(truncated);
  EXPECT_FALSE(truncated->isDecoded());

  serializer->automaticallyInflatesResponseImage = false;
  serializer->imageScale = 3;
  auto plain = imageFor(*serializer, test::png(30, 20));
  ASSERT_TRUE(plain);
  EXPECT_FALSE(plain->isDecoded());
  EXPECT_EQ(plain->height(), 20.0 / 3);
}

TEST(NKImageResponseSerializerTest, ValidationRules) {
  NKImageResponseSerializer serializer;
  const test::Bytes png = test::png(4, 4);
  const test::Bytes empty;
  std::optional<platform::Error> error;

  // Wrong type: refused, no image; with an empty body there is no error either.
  auto html = reply("text/html");
  EXPECT_TRUE(serializer.responseObjectForResponse(&html, &png, &error).isNil());
  ASSERT_TRUE(error);
  EXPECT_EQ(error->code, NKSerializationError::kCannotDecodeContentData);
  error.reset();
  EXPECT_TRUE(serializer.responseObjectForResponse(&html, &empty, &error).isNil());
  EXPECT_FALSE(error);

  // A refused status still yields the picture, with the error set.
  auto missing = reply("image/png", 404);
  EXPECT_TRUE(serializer.responseObjectForResponse(&missing, &png, &error).isObject());
  ASSERT_TRUE(error);
  EXPECT_EQ(error->code, NKSerializationError::kBadServerResponse);
  EXPECT_TRUE(serializer.responseObjectForResponse(&missing, &png, nullptr).isNil());

  // Garbage under an image type: no image, no error.
  error.reset();
  auto ok = reply("image/gif");
  const test::Bytes garbage = {'G', 'I', 'F', '8', '9', 'a', 0xff};
  EXPECT_TRUE(serializer.responseObjectForResponse(&ok, &garbage, &error).isNil());
  EXPECT_FALSE(error);
  EXPECT_TRUE(serializer.responseObjectForResponse(&ok, nullptr, &error).isNil());
}

}  // namespace
}  // namespace quillet::http
