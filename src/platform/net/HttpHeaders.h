#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillet::platform {

// HTTP header fields in the order they were added. Names keep the case they
// were given; look-up ignores case. A plain value, copyable.
class HttpHeaders {
 public:
  using Field = std::pair<std::string, std::string>;

  HttpHeaders() = default;
  HttpHeaders(std::initializer_list<Field> fields);

  // Appends a field, keeping any earlier field of that name.
  void add(std::string name, std::string value);
  // Replaces every field of that name by one (at the first one's place).
  void set(std::string_view name, std::string value);
  // Removes every field of that name; returns how many.
  size_t remove(std::string_view name);

  // The first field of that name.
  std::optional<std::string> value(std::string_view name) const;
  bool contains(std::string_view name) const { return value(name).has_value(); }

  const std::vector<Field>& fields() const { return fields_; }
  size_t size() const { return fields_.size(); }
  bool empty() const { return fields_.empty(); }
  void clear() { fields_.clear(); }

  static bool namesEqual(std::string_view a, std::string_view b);
  // `text` without leading and trailing blanks, tabs, CR and LF.
  static std::string_view trim(std::string_view text);
  // `text` with ASCII letters in lower case.
  static std::string lowercase(std::string_view text);

 private:
  std::vector<Field> fields_;
};

}  // namespace quillet::platform
