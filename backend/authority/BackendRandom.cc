#include "backend/authority/BackendRandom.h"

namespace quillet::backend {

BackendRandom::BackendRandom() {
  std::random_device device;
  std::seed_seq seed{device(), device(), device(), device()};
  engine_.seed(seed);
}

uint64_t BackendRandom::positive63() {
  std::lock_guard lock(mutex_);
  uint64_t value = 0;
  while (value == 0) value = engine_() >> 1;
  return value;
}

std::string BackendRandom::websafeText(size_t length) {
  static constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
  std::lock_guard lock(mutex_);
  std::string text(length, 'A');
  for (char& c : text) c = kAlphabet[engine_() & 63];
  return text;
}

}  // namespace quillet::backend
