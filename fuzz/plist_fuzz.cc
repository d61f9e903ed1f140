// Property list reading: any bytes give a value or an error, never a crash;
// what reads must write in both forms and read again.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platform/plist/PropertyList.h"

using quillet::platform::PropertyList;
using quillet::platform::Value;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Value value = PropertyList::read(std::string_view(reinterpret_cast<const char*>(data), size));
  if (value.isNil()) return 0;
  for (auto format : {PropertyList::Format::XML, PropertyList::Format::Binary}) {
    auto encoded = PropertyList::write(value, format);
    // Strings with a NUL or dates out of range read but do not write: an error value, fine.
    if (!encoded) continue;
    if (PropertyList::read(*encoded).isNil()) std::abort();
  }
  return 0;
}
