#include <gtest/gtest.h>

#include "messaging/schema/MSGLoginRequestBuilder.h"
#include "messaging/schema/MSGUtilities.h"

namespace quillet::messaging {
namespace {

TEST(RelaySchemaTest, TagTableBothWays) {
  for (int tag : {0, 1, 2, 3, 4, 7, 8}) {
    auto proto = MSGUtilities::protoForTag(tag);
    ASSERT_NE(proto, nullptr) << tag;
    EXPECT_EQ(MSGUtilities::tagForProto(*proto), tag);
  }
  for (int tag : {-1, 5, 6, 9, 127}) EXPECT_EQ(MSGUtilities::protoForTag(tag), nullptr) << tag;
  EXPECT_EQ(MSGUtilities::tagForProto(RelaySelectiveAck()), -1);
  EXPECT_EQ(MSGUtilities::tagForProto(RelayExtension()), -1);
}

TEST(RelaySchemaTest, PersistentIdAndStreamPositionOnlyOnTheirTypes) {
  RelayDataMessageStanza data;
  EXPECT_FALSE(MSGUtilities::persistentIdForProto(data));
  MSGUtilities::setPersistentIdForProto(data, "17");
  EXPECT_EQ(*MSGUtilities::persistentIdForProto(data), "17");
  RelayHeartbeatPing ping;
  MSGUtilities::setPersistentIdForProto(ping, "1");
  EXPECT_FALSE(MSGUtilities::persistentIdForProto(ping));

  EXPECT_EQ(MSGUtilities::lastStreamIdForProto(ping), -1);
  MSGUtilities::setLastStreamIdForProto(ping, 9);
  EXPECT_EQ(MSGUtilities::lastStreamIdForProto(ping), 9);
  RelayLoginResponse response;
  response.set_laststreamidreceived(4);
  EXPECT_EQ(MSGUtilities::lastStreamIdForProto(response), -1);  // not read for a login response
  RelayClose close;
  MSGUtilities::setLastStreamIdForProto(close, 3);  // no field: nothing happens
  EXPECT_EQ(close.ByteSizeLong(), 0u);
}

TEST(RelaySchemaTest, LoginRequestFixedValuesAndClampedDeviceId) {
  auto request = MSGLoginRequestBuilder::loginRequest("18446744073709551615", "secret", -1, {"a", "b"});
  ASSERT_TRUE(request.IsInitialized());
  EXPECT_EQ(request.id_p(), "ios-1.1.4");
  EXPECT_EQ(request.user(), "18446744073709551615");
  EXPECT_EQ(request.resource(), "18446744073709551615");
  EXPECT_EQ(request.deviceid(), "android-7fffffffffffffff");
  EXPECT_EQ(request.lastrmqid(), 1);
  ASSERT_TRUE(request.has_adaptiveheartbeat());
  EXPECT_FALSE(request.adaptiveheartbeat());
  EXPECT_TRUE(request.usermq2());
  EXPECT_EQ(request.accountid(), 1000000);
  EXPECT_EQ(request.authservice(), 2);
  EXPECT_EQ(request.networktype(), -1);
  ASSERT_EQ(request.settingarray_size(), 1);
  EXPECT_EQ(request.settingarray(0).name(), "new_vc");
  EXPECT_EQ(request.settingarray(0).value(), "1");
  EXPECT_EQ(request.receivedpersistentidarray_size(), 2);
  EXPECT_FALSE(request.has_compress());
  EXPECT_EQ(MSGLoginRequestBuilder::deviceIdForAuthId("4660"), "android-1234");
  EXPECT_EQ(MSGLoginRequestBuilder::deviceIdForAuthId("-1"), "android-ffffffffffffffff");
  EXPECT_EQ(MSGLoginRequestBuilder::deviceIdForAuthId("-99999999999999999999"), "android-8000000000000000");
  EXPECT_EQ(MSGLoginRequestBuilder::signedValueOfDecimal(" 12ab"), 12);
  EXPECT_EQ(MSGLoginRequestBuilder::signedValueOfDecimal("x"), 0);
}

TEST(RelaySchemaTest, MalformedBodiesFailToParseForEveryType) {
  const std::string truncated = std::string("\x0a\x05") + "ab";  // length 5, two bytes present
  for (int tag : {0, 1, 2, 3, 4, 7, 8}) {
    auto proto = MSGUtilities::protoForTag(tag);
    EXPECT_FALSE(proto->ParseFromString(truncated)) << tag;
  }
  RelayLoginRequest missingRequired;
  missingRequired.set_id_p("x");
  EXPECT_FALSE(RelayLoginRequest().ParseFromString(missingRequired.SerializePartialAsString()));
}

}  // namespace
}  // namespace quillet::messaging
