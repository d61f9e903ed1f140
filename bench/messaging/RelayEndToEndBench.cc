// End to end over TLS on loopback: data messages per second from the
// stand-in relay into the connection's delegate, with stream acks; Arg 0
// without a store, Arg 1 with every received id persisted.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>

#include "backend/authority/BackendCertificateAuthority.h"
#include "backend/relay/RelayServer.h"
#include "bench/SqliteModeScope.h"
#include "messaging/connection/MSGConnection.h"
#include "platform/log/Log.h"

namespace quillet::messaging {
namespace {

struct CountingDelegate : MSGConnectionDelegate {
  size_t messages = 0;
  void connectionDidCloseForReason(MSGConnection&, int) override {}
  void didLoginWithConnection(MSGConnection&) override {}
  void connectionDidRecieveMessage(MSGConnection&, const RelayDataMessageStanza&) override { ++messages; }
  int32_t connectionDidReceiveAckForRmqIds(MSGConnection&, const std::vector<std::string>&) override { return 0; }
};

void BM_RelayEndToEnd(benchmark::State& state) {
  bench::SqliteModeScope mode(state, 1);
  platform::Log::setStandardErrorEnabled(false);
  char pattern[] = "/tmp/quillet-relay-bench-XXXXXX";
  const std::filesystem::path dir = mkdtemp(pattern);
  backend::BackendCertificateAuthority authority(dir / "ca");
  authority.ensure();
  backend::RelayServerOptions options;
  options.certificateFile = authority.certificateFile();
  options.keyFile = authority.keyFile();
  options.adminPort = -1;
  options.credentials = {{"1", "s"}};
  backend::RelayServer server(options);
  server.start();
  auto manager =
      state.range(0) ? std::make_shared<MSGRmqManager>("rmq2", std::make_shared<platform::FileSystem>(dir)) : nullptr;
  platform::RunLoop loop;
  platform::TlsStreamOptions tls;
  tls.caFile = authority.caFile();
  auto delegate = std::make_shared<CountingDelegate>();
  constexpr size_t kMessages = 3000;
  double seconds = 0;
  for (auto _ : state) {
    state.PauseTiming();
    RelayDataMessageStanza stanza;
    stanza.set_from("bench");
    stanza.set_category("com.quillet.app");
    stanza.add_appdataarray()->set_key("post_id");
    stanza.mutable_appdataarray(0)->set_value("12345");
    for (size_t i = 0; i < kMessages; ++i) server.queueDataMessage("1", stanza);  // held until login
    MSGConnection connection("1", "s", "127.0.0.1", static_cast<uint16_t>(server.port()), loop, manager,
                             std::weak_ptr<MSGConnectionResender>(), MSGSecureSocket::tlsStreamFactory(tls));
    connection.setDelegate(delegate);
    delegate->messages = 0;
    state.ResumeTiming();
    auto start = std::chrono::steady_clock::now();
    connection.signIn();
    loop.runUntil([&] { return delegate->messages == kMessages; }, 120);
    seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    state.PauseTiming();
    if (delegate->messages != kMessages) state.SkipWithError("messages missing");
    connection.disconnect();
    state.ResumeTiming();
  }
  state.counters["messages_per_s"] = double(kMessages) * double(state.iterations()) / seconds;
  server.stop();
  std::filesystem::remove_all(dir);
}
BENCHMARK(BM_RelayEndToEnd)
    ->Args({0, 1})
    ->Args({1, 0})
    ->Args({1, 1})
    ->ArgNames({"persisted", "wal"})
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
}  // namespace quillet::messaging
