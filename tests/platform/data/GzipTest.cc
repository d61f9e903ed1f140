#include "platform/data/Gzip.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <string>

namespace quillet::platform {
namespace {

std::vector<uint8_t> bytes(std::string_view s) { return {s.begin(), s.end()}; }

TEST(GzipTest, RoundTripsWithAStandardHeader) {
  std::string text;
  for (int i = 0; i < 5000; ++i) text += "measurement bundle " + std::to_string(i % 17) + "\n";
  auto packed = Gzip::compress(text);
  ASSERT_TRUE(packed);
  ASSERT_GE(packed->size(), 18u);
  EXPECT_TRUE(Gzip::isGzip(*packed));
  EXPECT_EQ((*packed)[2], 8);  // deflate
  EXPECT_LT(packed->size(), text.size() / 10);
  EXPECT_EQ(Gzip::inflate(*packed), bytes(text));

  auto empty = Gzip::compress(std::string_view());
  ASSERT_TRUE(empty);
  EXPECT_EQ(Gzip::inflate(*empty), std::vector<uint8_t>());
}

TEST(GzipTest, InflatesZlibStreamsToo) {
  std::string text = "a zlib stream, as a server may send it";
  std::vector<uint8_t> out(compressBound(text.size()));
  uLongf size = out.size();
  ASSERT_EQ(compress2(out.data(), &size, reinterpret_cast<const Bytef*>(text.data()), text.size(), 9), Z_OK);
  out.resize(size);
  EXPECT_FALSE(Gzip::isGzip(out));
  EXPECT_EQ(Gzip::inflate(out), bytes(text));
}

TEST(GzipTest, BadInputIsAnErrorValue) {
  auto packed = *Gzip::compress(std::string(10000, 'x') + "tail");
  Error error;
  EXPECT_FALSE(Gzip::inflate({}, Gzip::kDefaultMaxOutput, &error));
  EXPECT_EQ(error.domain, "quillet.platform.gzip");

  std::vector<uint8_t> truncated(packed.begin(), packed.end() - 6);
  EXPECT_FALSE(Gzip::inflate(truncated, Gzip::kDefaultMaxOutput, &error));

  std::vector<uint8_t> corrupt = packed;
  corrupt[corrupt.size() - 3] ^= 0xff;  // the length in the trailer
  EXPECT_FALSE(Gzip::inflate(corrupt));
  corrupt = packed;
  corrupt[12] ^= 0x55;
  EXPECT_FALSE(Gzip::inflate(corrupt));

  std::vector<uint8_t> trailing = packed;
  trailing.push_back(0);
  EXPECT_FALSE(Gzip::inflate(trailing, Gzip::kDefaultMaxOutput, &error));
  EXPECT_EQ(error.code, -101);

  EXPECT_FALSE(Gzip::inflate(bytes("plain text, not compressed")));
  EXPECT_FALSE(Gzip::inflate(packed, 10003, &error));
  EXPECT_EQ(error.code, -100);
  EXPECT_EQ(Gzip::inflate(packed, 10004)->size(), 10004u);  // exactly at the bound
}

}  // namespace
}  // namespace quillet::platform
