#include "support/TempDir.h"

#include <cstdlib>
#include <stdexcept>
#include <string>

namespace quillet::testing {

TempDir::TempDir() {
  std::string pattern = (std::filesystem::temp_directory_path() / "quillet-test-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
  path_ = pattern;
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace quillet::testing
