#pragma once

#include <filesystem>

namespace quillet::testing {

// Places of the source and build trees that tests read from. They come from
// the build, not from __FILE__, which names a path relative to the build
// directory and so means nothing from ctest's working directory.
struct TestPaths {
  // The root of the source tree.
  static std::filesystem::path sourceDirectory();
  // The stories' videos made at build time (resources/videos of the build).
  static std::filesystem::path storyVideosDirectory();
  // The media facility's test videos made at build time (tests/videos of the build).
  static std::filesystem::path testVideosDirectory();
};

}  // namespace quillet::testing
