#pragma once

#include <string>

#include "platform/ui/View.h"

namespace quillet::platform {

// A cell of a table or collection view, kept for reuse under its reuse
// identifier. A cell that scrolls off keeps its state when it is handed out
// again: prepareForReuse() does nothing unless a subclass makes it, so a
// row that does not reset what it shows shows the old row's marks.
class ReusableCell : public View {
 public:
  explicit ReusableCell(std::string reuseIdentifier)
      : View(reuseIdentifier), reuseIdentifier_(std::move(reuseIdentifier)) {}

  const std::string& reuseIdentifier() const { return reuseIdentifier_; }
  // Called just before the cell is handed out again.
  virtual void prepareForReuse() {}

 private:
  std::string reuseIdentifier_;
};

}  // namespace quillet::platform
