#include "platform/files/AtomicFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <random>

namespace quillet::platform {
namespace {

// A unique name beside the target: the rename that publishes it stays within one file system.
std::filesystem::path temporaryPath(const std::filesystem::path& path) {
  static std::atomic<uint64_t> counter{0};
  thread_local std::mt19937_64 random{std::random_device{}()};
  // Built by appending: "literal" + std::string trips a false -Wrestrict in GCC 12 at -O3.
  std::string name(".");
  name.append(path.filename().string())
      .append(".tmp-")
      .append(std::to_string(getpid()))
      .append("-")
      .append(std::to_string(counter++))
      .append("-")
      .append(std::to_string(random() & 0xffffffu));
  return path.parent_path() / name;
}

bool writeAll(int fd, std::string_view data) {
  const char* p = data.data();
  size_t left = data.size();
  while (left > 0) {
    ssize_t n = ::write(fd, p, left);
    if (n < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    p += n;
    left -= static_cast<size_t>(n);
  }
  return true;
}

int fsyncRetrying(int fd) {
  int rc;
  do rc = ::fsync(fd);
  while (rc != 0 && errno == EINTR);
  return rc;
}

// Carries the user attributes of the file being replaced (such as its backup
// exclusion mark) over to its replacement. Best effort: a file system without
// attributes has none to carry.
void copyUserAttributes(const std::filesystem::path& from, int toFd) {
  ssize_t size = ::listxattr(from.c_str(), nullptr, 0);
  if (size <= 0) return;
  std::string names(static_cast<size_t>(size), '\0');
  size = ::listxattr(from.c_str(), names.data(), names.size());
  if (size <= 0) return;
  names.resize(static_cast<size_t>(size));
  for (size_t start = 0; start < names.size();) {
    std::string name(names.c_str() + start);
    start += name.size() + 1;
    if (name.rfind("user.", 0) != 0) continue;
    char value[256];
    ssize_t n = ::getxattr(from.c_str(), name.c_str(), value, sizeof value);
    if (n >= 0) ::fsetxattr(toFd, name.c_str(), value, static_cast<size_t>(n), 0);
  }
}

}  // namespace

Error AtomicFile::makeError(int code, std::string_view operation, const std::filesystem::path& path) {
  std::string text = std::string(operation) + " " + path.string() + ": " + std::strerror(code);
  return Error::withDescription(errorDomain, code, text);
}

bool AtomicFile::write(const std::filesystem::path& path, std::string_view data, Error* error,
                       std::optional<mode_t> mode) {
  auto fail = [&](int code, std::string_view operation) {
    if (error) *error = makeError(code, operation, path);
    return false;
  };
  if (path.filename().empty()) return fail(EINVAL, "write");
  std::filesystem::path temp = temporaryPath(path);
  int fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode.value_or(0666));
  if (fd < 0) return fail(errno, "create temporary file for");
  auto abandon = [&](std::string_view operation) {
    int code = errno;
    ::close(fd);
    ::unlink(temp.c_str());
    return fail(code, operation);
  };
  // A replaced file keeps its mode unless one is given; the umask may have
  // taken bits from an explicit mode, so it is set exactly.
  struct stat existing;
  bool replacing = ::stat(path.c_str(), &existing) == 0;
  if (!mode && replacing) mode = existing.st_mode & 07777;
  if (mode && ::fchmod(fd, *mode) != 0) return abandon("set mode of");
  if (replacing) copyUserAttributes(path, fd);
  if (!writeAll(fd, data)) return abandon("write");
  if (fsyncRetrying(fd) != 0) return abandon("flush");
  if (::close(fd) != 0) {
    int code = errno;
    ::unlink(temp.c_str());
    return fail(code, "close");
  }
  if (::rename(temp.c_str(), path.c_str()) != 0) {
    int code = errno;
    ::unlink(temp.c_str());
    return fail(code, "rename into");
  }
  // The rename is durable only once the directory entry is on disk.
  std::filesystem::path dir = path.parent_path().empty() ? std::filesystem::path(".") : path.parent_path();
  int dirFd = ::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (dirFd >= 0) {
    fsyncRetrying(dirFd);
    ::close(dirFd);
  }
  return true;
}

std::optional<std::string> AtomicFile::read(const std::filesystem::path& path, Error* error) {
  int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) {
    if (error) *error = makeError(errno, "open", path);
    return std::nullopt;
  }
  std::string contents;
  char buffer[65536];
  for (;;) {
    ssize_t n = ::read(fd, buffer, sizeof buffer);
    if (n < 0) {
      if (errno == EINTR) continue;
      int code = errno;
      ::close(fd);
      if (error) *error = makeError(code, "read", path);
      return std::nullopt;
    }
    if (n == 0) break;
    contents.append(buffer, static_cast<size_t>(n));
  }
  ::close(fd);
  return contents;
}

}  // namespace quillet::platform
