#include "platform/plist/PropertyListFile.h"

#include <cerrno>
#include <string>

#include "platform/files/AtomicFile.h"
#include "platform/log/Log.h"
#include "platform/plist/PropertyList.h"

namespace quillet::platform {

std::optional<Value> PropertyListFile::load(const std::filesystem::path& path, std::string_view what) {
  Error error;
  auto contents = AtomicFile::read(path, &error);
  if (!contents) {
    if (error.code != ENOENT) {
      Log::writef("Cannot read %.*s file %s, starting empty: %s", static_cast<int>(what.size()), what.data(),
                  path.c_str(), error.localizedDescription().c_str());
    }
    return std::nullopt;
  }
  Value value = PropertyList::read(*contents, &error);
  if (value.isNil()) {
    reportDamaged(path, what);
    return std::nullopt;
  }
  return value;
}

bool PropertyListFile::save(const std::filesystem::path& path, const Value& value, std::string_view what,
                            std::optional<mode_t> mode) {
  Error error;
  auto encoded = PropertyList::write(value, PropertyList::Format::Binary, &error);
  if (encoded && AtomicFile::write(path, *encoded, &error, mode)) return true;
  Log::writef("Cannot write %.*s file %s: %s", static_cast<int>(what.size()), what.data(), path.c_str(),
              error.localizedDescription().c_str());
  return false;
}

void PropertyListFile::reportDamaged(const std::filesystem::path& path, std::string_view what) {
  Log::writef("Damaged %.*s file %s, starting empty", static_cast<int>(what.size()), what.data(), path.c_str());
}

}  // namespace quillet::platform
