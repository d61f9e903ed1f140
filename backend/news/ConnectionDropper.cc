#include "backend/news/ConnectionDropper.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <charconv>
#include <filesystem>
#include <string>

namespace quillet::backend {
namespace {

int portOf(const sockaddr_storage& address) {
  if (address.ss_family == AF_INET) return ntohs(reinterpret_cast<const sockaddr_in&>(address).sin_port);
  if (address.ss_family == AF_INET6) return ntohs(reinterpret_cast<const sockaddr_in6&>(address).sin6_port);
  return -1;
}

}  // namespace

bool ConnectionDropper::drop(int localPort, int remotePort) {
  std::error_code ec;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd", ec)) {
    const std::string name = entry.path().filename().string();
    int fd = -1;
    if (std::from_chars(name.data(), name.data() + name.size(), fd).ec != std::errc()) continue;
    sockaddr_storage local{};
    sockaddr_storage peer{};
    socklen_t localLength = sizeof(local);
    socklen_t peerLength = sizeof(peer);
    if (getsockname(fd, reinterpret_cast<sockaddr*>(&local), &localLength) != 0 ||
        getpeername(fd, reinterpret_cast<sockaddr*>(&peer), &peerLength) != 0) {
      continue;
    }
    if (portOf(local) == localPort && portOf(peer) == remotePort) {
      return ::shutdown(fd, SHUT_RDWR) == 0;
    }
  }
  return false;
}

}  // namespace quillet::backend
