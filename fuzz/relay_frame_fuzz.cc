// The relay frame parser fed in random chunks: the first input bytes choose
// the chunk sizes, the rest is what the server sends after its version byte.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "messaging/socket/MSGMemoryStream.h"
#include "messaging/socket/MSGSecureSocket.h"

namespace {

struct Sink : quillet::messaging::MSGSecureSocketDelegate {
  size_t bytes = 0;
  void secureSocketDidConnect(quillet::messaging::MSGSecureSocket&) override {}
  void didDisconnectWithSecureSocket(quillet::messaging::MSGSecureSocket&) override {}
  void secureSocketDidReceiveData(quillet::messaging::MSGSecureSocket&, std::span<const uint8_t> data,
                                  int8_t) override {
    bytes += data.size();
  }
  void secureSocketDidSendProtoWithTag(quillet::messaging::MSGSecureSocket&, int8_t,
                                       const std::optional<std::string>&) override {}
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace quillet::messaging;
  if (size < 4) return 0;
  static quillet::platform::RunLoop loop{std::make_shared<quillet::platform::ManualClock>()};
  std::shared_ptr<MSGMemoryStream> stream;
  Sink sink;
  MSGSecureSocket socket([&](quillet::platform::RunLoop& l) {
    stream = std::make_shared<MSGMemoryStream>(l);
    return stream;
  });
  socket.setDelegate(&sink);
  socket.connectToHost("fuzz", 1, loop);
  stream->completeOpen();
  loop.runPending();
  const uint8_t* chunkSizes = data;
  const size_t sizes = 3;
  std::span<const uint8_t> rest(data + sizes, size - sizes);
  const uint8_t version = 40;
  stream->deliver(std::span<const uint8_t>(&version, 1));
  size_t offset = 0;
  for (size_t i = 0; offset < rest.size() && socket.state() == MSGSecureSocket::kStateOpen; ++i) {
    size_t chunk = 1 + chunkSizes[i % sizes] * (1 + chunkSizes[(i + 1) % sizes] % 64);
    chunk = std::min(chunk, rest.size() - offset);
    stream->deliver(rest.subspan(offset, chunk));
    loop.runPending();
    offset += chunk;
  }
  socket.setDelegate(nullptr);
  return 0;
}
