// Frame extraction: 64 MiB of mixed frames (10 B to 8 KiB bodies) through the
// socket's read pass, read in chunks of 1 to 16384 bytes, against memcpy of
// the same bytes in the same run (counter "vs_memcpy": read pass / memcpy speed).
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "messaging/socket/MSGMemoryStream.h"
#include "messaging/socket/MSGSecureSocket.h"

namespace quillet::messaging {
namespace {

constexpr size_t kTotal = 64u << 20;

const std::vector<uint8_t>& mixedFrames() {
  static const std::vector<uint8_t> bytes = [] {
    std::vector<uint8_t> out;
    out.reserve(kTotal + 16384);
    std::mt19937 random(7);
    std::uniform_int_distribution<size_t> bodySize(10, 8192);
    while (out.size() < kTotal) {
      size_t size = bodySize(random);
      out.push_back(8);
      for (size_t n = size;; n >>= 7) {
        out.push_back(static_cast<uint8_t>((n & 0x7f) | (n >= 0x80 ? 0x80 : 0)));
        if (n < 0x80) break;
      }
      out.insert(out.end(), size, static_cast<uint8_t>(size));
    }
    return out;
  }();
  return bytes;
}

double memcpyBytesPerSecond() {
  static const double rate = [] {
    const auto& source = mixedFrames();
    std::vector<uint8_t> target(source.size());
    double best = 0;
    for (int i = 0; i < 5; ++i) {
      auto start = std::chrono::steady_clock::now();
      std::memcpy(target.data(), source.data(), source.size());
      benchmark::DoNotOptimize(target.data());
      double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
      best = std::max(best, double(source.size()) / seconds);
    }
    return best;
  }();
  return rate;
}

struct Counter : MSGSecureSocketDelegate {
  size_t frames = 0;
  void secureSocketDidConnect(MSGSecureSocket&) override {}
  void didDisconnectWithSecureSocket(MSGSecureSocket&) override {}
  void secureSocketDidReceiveData(MSGSecureSocket&, std::span<const uint8_t> data, int8_t) override {
    ++frames;
    benchmark::DoNotOptimize(data.data());
  }
  void secureSocketDidSendProtoWithTag(MSGSecureSocket&, int8_t, const std::optional<std::string>&) override {}
};

void BM_FrameExtraction(benchmark::State& state) {
  const auto& bytes = mixedFrames();
  const double memcpyRate = memcpyBytesPerSecond();
  platform::RunLoop loop{std::make_shared<platform::ManualClock>()};
  double seconds = 0;
  for (auto _ : state) {
    state.PauseTiming();
    std::shared_ptr<MSGMemoryStream> stream;
    Counter counter;
    MSGSecureSocket socket([&](platform::RunLoop& l) {
      stream = std::make_shared<MSGMemoryStream>(l);
      return stream;
    });
    socket.setDelegate(&counter);
    socket.connectToHost("bench", 1, loop);
    stream->completeOpen();
    loop.runPending();
    const uint8_t version = 40;
    stream->deliver(std::span<const uint8_t>(&version, 1));
    loop.runPending();
    stream->setReadChunkLimit(static_cast<size_t>(state.range(0)));
    stream->deliver(bytes);
    state.ResumeTiming();
    auto start = std::chrono::steady_clock::now();
    loop.runPending();
    seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    state.PauseTiming();
    if (stream->unreadCount() != 0 || socket.state() != MSGSecureSocket::kStateOpen)
      state.SkipWithError("not all read");
    socket.setDelegate(nullptr);
    state.ResumeTiming();
  }
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(bytes.size()));
  const double rate = double(state.iterations()) * double(bytes.size()) / seconds;
  state.counters["MB_per_s"] = rate / 1e6;
  state.counters["memcpy_MB_per_s"] = memcpyRate / 1e6;
  state.counters["vs_memcpy"] = rate / memcpyRate;
}
BENCHMARK(BM_FrameExtraction)
    ->Arg(1)
    ->Arg(16)
    ->Arg(256)
    ->Arg(4096)
    ->Arg(16384)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2);

}  // namespace
}  // namespace quillet::messaging
