#include "support/TestPaths.h"

// The build defines these for this file alone, so that the absolute paths of
// one clone reach no other unit's compile line and the compiler cache serves
// clones at other paths.
namespace quillet::testing {

std::filesystem::path TestPaths::sourceDirectory() { return QUILLET_SOURCE_DIR; }
std::filesystem::path TestPaths::storyVideosDirectory() { return QUILLET_VIDEOS_DIR; }
std::filesystem::path TestPaths::testVideosDirectory() { return QUILLET_TEST_VIDEOS_DIR; }

}  // namespace quillet::testing
