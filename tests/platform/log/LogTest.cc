#include "platform/log/Log.h"

#include <gtest/gtest.h>

#include "support/LogCapture.h"

namespace quillet::platform {
namespace {

TEST(LogTest, LinesReachSinksWithTheSystemLogShape) {
  std::string line;
  int handle = Log::addSink([&](const LogRecord& r) { line = r.line; });
  testing::LogCapture capture;
  Log::writef("value %d of %s", 7, "seven");
  Log::removeSink(handle);
  Log::write("after removal");
  EXPECT_EQ(capture.messages(), (std::vector<std::string>{"value 7 of seven", "after removal"}));
  // "yyyy-MM-dd HH:mm:ss.SSS quillet[pid:tid] message"
  ASSERT_GT(line.size(), 24u);
  EXPECT_EQ(line[4], '-');
  EXPECT_EQ(line[10], ' ');
  EXPECT_EQ(line[19], '.');
  EXPECT_EQ(line.substr(23, 9), " quillet[");
  EXPECT_NE(line.find(":"), std::string::npos);
  EXPECT_TRUE(line.ends_with("] value 7 of seven")) << line;
}

}  // namespace
}  // namespace quillet::platform
