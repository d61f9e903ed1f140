#include "news/store/NewsItemAt.h"

#include <cstdint>
#include <stdexcept>
#include <string>

namespace quillet::news {

const platform::Value& newsItemAt(const platform::Value& list, int index) {
  const size_t size = list.isArray() ? list.count() : 0;
  if (index < 0 || static_cast<size_t>(index) >= size) {
    std::string message = "index ";
    message += std::to_string(static_cast<uint32_t>(index));
    message += size == 0 ? " beyond bounds for empty array" : " beyond bounds [0 .. " + std::to_string(size - 1) + "]";
    throw std::out_of_range(message);
  }
  return list.at(static_cast<size_t>(index));
}

}  // namespace quillet::news
