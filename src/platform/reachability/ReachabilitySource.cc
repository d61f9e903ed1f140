#include "platform/reachability/ReachabilitySource.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <vector>

#include "platform/runloop/RunLoop.h"

namespace quillet::platform {

// One schedule: where and to whom changes go. Timers and posted checks hold
// it weakly; `active` is only touched on the loop's thread.
struct ReachabilitySource::Watch {
  RunLoop* loop = nullptr;
  asio::ip::address address;
  ChangeCallback callback;
  ReachabilityFlags last = 0;
  TimerId timer = 0;
  bool active = true;
};

namespace {
std::atomic<ReachabilityOverride> overrideMode{ReachabilityOverride::Automatic};
}  // namespace

// The schedules alive in the process, for the override to reach, and the
// test's replacement for reading the machine.
struct ReachabilitySource::Registry {
  std::mutex mutex;
  std::function<NetworkSnapshot()> provider;
  std::vector<std::weak_ptr<Watch>> watches;
};

ReachabilitySource::Registry& ReachabilitySource::registry() {
  static Registry r;
  return r;
}

NetworkSnapshot ReachabilitySource::snapshot() {
  std::function<NetworkSnapshot()> provider;
  {
    std::lock_guard lock(registry().mutex);
    provider = registry().provider;
  }
  return provider ? provider() : NetworkSnapshot::current();
}

ReachabilityFlags ReachabilitySource::flagsFor(const asio::ip::address& address) {
  if (auto fixed = flagsForOverride(overrideMode.load())) return *fixed;
  return snapshot().flagsForAddress(address);
}

std::unique_ptr<ReachabilitySource> ReachabilitySource::forInternet() {
  return std::unique_ptr<ReachabilitySource>(new ReachabilitySource(asio::ip::address_v4::any()));
}

std::unique_ptr<ReachabilitySource> ReachabilitySource::forAddress(std::string_view address) {
  asio::error_code ec;
  auto parsed = asio::ip::make_address(std::string(address), ec);
  if (ec) return nullptr;
  return std::unique_ptr<ReachabilitySource>(new ReachabilitySource(parsed));
}

std::unique_ptr<ReachabilitySource> ReachabilitySource::forHostName(std::string_view hostName) {
  if (hostName.empty()) return nullptr;
  if (auto literal = forAddress(hostName)) return literal;
  std::string lower(hostName);
  std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return std::tolower(c); });
  if (lower == "localhost" || lower == "localhost.") {
    return std::unique_ptr<ReachabilitySource>(new ReachabilitySource(asio::ip::address_v4::loopback()));
  }
  return forInternet();
}

ReachabilitySource::ReachabilitySource(asio::ip::address address) : address_(address) {}

ReachabilitySource::~ReachabilitySource() { unschedule(); }

ReachabilityFlags ReachabilitySource::flags() const { return flagsFor(address_); }

void ReachabilitySource::schedule(RunLoop& loop, ChangeCallback callback, double pollSeconds) {
  unschedule();
  auto watch = std::make_shared<Watch>();
  watch->loop = &loop;
  watch->address = address_;
  watch->callback = std::move(callback);
  watch->last = flags();
  std::weak_ptr<Watch> weak = watch;
  watch->timer = loop.scheduleRepeating(pollSeconds, [weak] { check(weak); });
  {
    std::lock_guard lock(registry().mutex);
    auto& watches = registry().watches;
    std::erase_if(watches, [](const std::weak_ptr<Watch>& w) { return w.expired(); });
    watches.push_back(watch);
  }
  watch_ = std::move(watch);
}

void ReachabilitySource::unschedule() {
  if (!watch_) return;
  watch_->active = false;
  watch_->loop->cancel(watch_->timer);
  watch_.reset();  // the registry's weak entry expires with it
}

void ReachabilitySource::setOverride(ReachabilityOverride mode) {
  overrideMode.store(mode);
  std::lock_guard lock(registry().mutex);
  for (const auto& weak : registry().watches) {
    if (auto watch = weak.lock()) watch->loop->post([weak] { check(weak); });
  }
}

ReachabilityOverride ReachabilitySource::currentOverride() { return overrideMode.load(); }

std::optional<ReachabilityFlags> ReachabilitySource::flagsForOverride(ReachabilityOverride mode) {
  switch (mode) {
    case ReachabilityOverride::WiFi:
      return kReachabilityReachable;
    case ReachabilityOverride::Cellular:
      return kReachabilityReachable | kReachabilityIsWWAN;
    case ReachabilityOverride::None:
      return 0;
    case ReachabilityOverride::Automatic:
      break;
  }
  return std::nullopt;
}

void ReachabilitySource::setSnapshotProvider(std::function<NetworkSnapshot()> provider) {
  std::lock_guard lock(registry().mutex);
  registry().provider = std::move(provider);
}

// Looks again and reports a change; runs on the watch's loop.
void ReachabilitySource::check(const std::weak_ptr<Watch>& weak) {
  auto watch = weak.lock();
  if (!watch || !watch->active) return;
  ReachabilityFlags now = flagsFor(watch->address);
  if (now == watch->last) return;
  watch->last = now;
  // A copy: the callback may unschedule or destroy its source.
  auto callback = watch->callback;
  if (callback) callback(now);
}

}  // namespace quillet::platform
