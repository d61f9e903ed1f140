#pragma once

#include <compare>
#include <string>

namespace quillet::platform {

// A row (or item) in a section of a table or collection view. Plain data,
// ordered by section then row.
struct IndexPath {
  int section = 0;
  int row = 0;

  static IndexPath forRow(int row, int section = 0) { return IndexPath{section, row}; }
  // "section.row", as snapshots and driver paths write it.
  std::string text() const { return std::to_string(section) + "." + std::to_string(row); }

  auto operator<=>(const IndexPath&) const = default;
};

}  // namespace quillet::platform
