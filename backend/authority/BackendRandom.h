#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <random>
#include <string>

namespace quillet::backend {

// Random numbers and texts for what the stand-in servers issue (device ids,
// secrets, tokens). Seeded from the system's entropy; thread-safe.
class BackendRandom {
 public:
  BackendRandom();

  // A number in [1, 2^63 - 1]: fits a signed 64-bit field, never 0.
  uint64_t positive63();
  // `length` characters of [A-Za-z0-9_-].
  std::string websafeText(size_t length);

 private:
  std::mutex mutex_;
  std::mt19937_64 engine_;
};

}  // namespace quillet::backend
