#include "http/serialization/NKAppInfo.h"

#include <mutex>

namespace quillet::http {
namespace {

std::mutex& infoMutex() {
  static std::mutex mutex;
  return mutex;
}

NKAppInfo& stored() {
  static NKAppInfo info;
  return info;
}

}  // namespace

NKAppInfo NKAppInfo::current() {
  std::lock_guard lock(infoMutex());
  return stored();
}

void NKAppInfo::setCurrent(NKAppInfo info) {
  std::lock_guard lock(infoMutex());
  stored() = std::move(info);
}

}  // namespace quillet::http
