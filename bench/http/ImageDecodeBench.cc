// Decoding a 1024 x 1024 JPEG through the platform decoder and through the
// image response serializer (header, inflate, image object), against a plain
// copy of the same bytes in the same run.
#include <benchmark/benchmark.h>
#include <stb/stb_image_write.h>

#include <cstring>
#include <vector>

#include "http/images/NKImageResponseSerializer.h"
#include "platform/image/ImageDecoder.h"

namespace quillet::http {
namespace {

const std::vector<uint8_t>& jpeg() {
  static const std::vector<uint8_t> bytes = [] {
    constexpr int kSide = 1024;
    std::vector<uint8_t> pixels(size_t{kSide} * kSide * 3);
    for (size_t i = 0; i < pixels.size(); ++i)
      pixels[i] = static_cast<uint8_t>((i / 3 % kSide + i / 3 / kSide) * (i % 3 + 1));
    std::vector<uint8_t> out;
    stbi_write_jpg_to_func(
        [](void* context, void* data, int size) {
          auto* sink = static_cast<std::vector<uint8_t>*>(context);
          sink->insert(sink->end(), static_cast<uint8_t*>(data), static_cast<uint8_t*>(data) + size);
        },
        &out, kSide, kSide, 3, pixels.data(), 85);
    return out;
  }();
  return bytes;
}

void BM_MemcpyBaseline(benchmark::State& state) {
  const auto& bytes = jpeg();
  std::vector<uint8_t> copy(bytes.size());
  for (auto _ : state) {
    std::memcpy(copy.data(), bytes.data(), bytes.size());
    benchmark::DoNotOptimize(copy.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
}
BENCHMARK(BM_MemcpyBaseline);

void BM_ImageDecoderJpeg1024(benchmark::State& state) {
  const auto& bytes = jpeg();
  for (auto _ : state) {
    auto bitmap = platform::ImageDecoder::decode(bytes);
    if (!bitmap) state.SkipWithError("decode failed");
    benchmark::DoNotOptimize(bitmap);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
}
BENCHMARK(BM_ImageDecoderJpeg1024)->Unit(benchmark::kMillisecond);

void BM_ImageSerializerJpeg1024(benchmark::State& state) {
  const auto& bytes = jpeg();
  NKImageResponseSerializer serializer;
  platform::HttpResponse response;
  response.statusCode = 200;
  response.url = "http://127.0.0.1/picture.jpg";
  response.headers.set("Content-Type", "image/jpeg");
  for (auto _ : state) {
    std::optional<platform::Error> error;
    auto object = serializer.responseObjectForResponse(&response, &bytes, &error);
    auto image = object.objectAs<platform::Image>();
    if (error || !image || !image->isDecoded()) state.SkipWithError("not inflated");
    benchmark::DoNotOptimize(image);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
}
BENCHMARK(BM_ImageSerializerJpeg1024)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace quillet::http
