// The subsystem's log: formatting, the level filter and the writer.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "instanceid/support/InstanceIDError.h"
#include "instanceid/support/InstanceIDLogger.h"

namespace quillet::instanceid {
namespace {

class CapturingWriter : public InstanceIDLogWriter {
 public:
  void logMessage(const std::string& message, InstanceIDLogLevel) override { lines.push_back(message); }
  std::vector<std::string> lines;
};

TEST(InstanceIDLoggerTest, LevelFilterAdmitsInfoAndAboveFromItsLevelAndNeverDebug) {
  InstanceIDLogLevelFilter zero(0);
  EXPECT_FALSE(zero.filterAllowsMessage("m", InstanceIDLogLevel::Debug));
  EXPECT_TRUE(zero.filterAllowsMessage("m", InstanceIDLogLevel::Info));
  InstanceIDLogLevelFilter two(2);
  EXPECT_FALSE(two.filterAllowsMessage("m", InstanceIDLogLevel::Info));
  EXPECT_TRUE(two.filterAllowsMessage("m", InstanceIDLogLevel::Error));
  EXPECT_TRUE(two.filterAllowsMessage("m", InstanceIDLogLevel::Assert));
}

TEST(InstanceIDLoggerTest, MessagesAreFormattedWithTimeAndNameThenFilteredThenWritten) {
  auto clock = std::make_shared<platform::ManualClock>();
  clock->setWallSeconds(0);
  auto writer = std::make_shared<CapturingWriter>();
  InstanceIDLogger& logger = InstanceIDLogger::shared();
  logger.setWriter(writer);
  logger.setFormatter(std::make_shared<InstanceIDLogStandardFormatter>(clock));
  logger.setFilter(std::make_shared<InstanceIDLogLevelFilter>(1));

  iidLogDebug("hidden");
  iidLogInfo("Save InstanceID library version 1.1.7");
  iidLogError("broken");
  ASSERT_EQ(writer->lines.size(), 2u);
  const std::string& line = writer->lines[0];
  ASSERT_EQ(line.size(), std::string("1970-01-01 00:00:00.000").size() + std::string(": InstanceID | ").size() +
                             std::string("Save InstanceID library version 1.1.7").size())
      << line;
  EXPECT_TRUE(line.ends_with(": InstanceID | Save InstanceID library version 1.1.7")) << line;

  // A watcher's level shows what the filter drops, debug lines included.
  logger.setShownLevel(InstanceIDLogLevel::Debug);
  iidLogDebug("shown to the watcher");
  logger.setShownLevel(std::nullopt);
  iidLogDebug("hidden again");
  ASSERT_EQ(writer->lines.size(), 3u);
  EXPECT_TRUE(writer->lines[2].ends_with("| shown to the watcher")) << writer->lines[2];

  logger.setFilter(std::make_shared<InstanceIDLogLevelFilter>(2));
  logger.setWriter(std::make_shared<InstanceIDLogStandardWriter>());
  logger.setFormatter(std::make_shared<InstanceIDLogStandardFormatter>());
}

TEST(InstanceIDLoggerTest, ErrorsCarryTheDomainAndCodeOnly) {
  const platform::Error error = errorWithInstanceIDErrorCode(InstanceIDErrorCodeNoValidCheckin);
  EXPECT_EQ(error.domain, "com.stikri.iid");
  EXPECT_EQ(instanceIDErrorCode(error), 501);
  EXPECT_TRUE(error.userInfo.isNil());
}

}  // namespace
}  // namespace quillet::instanceid
