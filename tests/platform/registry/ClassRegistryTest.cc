#include "platform/registry/ClassRegistry.h"

#include <gtest/gtest.h>

namespace quillet::platform {
namespace {

TEST(ClassRegistryTest, CallsByNameAndAnswersNothingWhenAbsent) {
  ClassRegistry registry;
  EXPECT_FALSE(registry.hasClass("MTRAppMeasurement"));
  EXPECT_FALSE(registry.call("MTRAppMeasurement", "logEvent").has_value());

  std::vector<Value> seen;
  registry.registerOperation("MTRAppMeasurement", "logEvent", [&](const std::vector<Value>& args) {
    seen = args;
    return Value(true);
  });
  EXPECT_TRUE(registry.hasClass("MTRAppMeasurement"));
  EXPECT_TRUE(registry.respondsTo("MTRAppMeasurement", "logEvent"));
  EXPECT_FALSE(registry.respondsTo("MTRAppMeasurement", "other"));
  auto result = registry.call("MTRAppMeasurement", "logEvent", {Value("_cmp"), Value(3)});
  ASSERT_TRUE(result.has_value());
  EXPECT_TRUE(result->boolValue());
  ASSERT_EQ(seen.size(), 2u);
  EXPECT_EQ(seen[0].string(), "_cmp");

  registry.removeClass("MTRAppMeasurement");
  EXPECT_FALSE(registry.respondsTo("MTRAppMeasurement", "logEvent"));
}

TEST(ClassRegistryTest, AnOperationMayUseTheRegistryItself) {
  ClassRegistry registry;
  registry.registerOperation("MSGService", "MSGSDKVersion", [](const std::vector<Value>&) { return Value("1.0"); });
  registry.registerOperation("Caller", "version", [&](const std::vector<Value>&) {
    return registry.call("MSGService", "MSGSDKVersion").value_or(Value());
  });
  EXPECT_EQ(registry.call("Caller", "version")->string(), "1.0");
}

}  // namespace
}  // namespace quillet::platform
