#include "OperationTestSupport.h"
#include "http/operations/NKHTTPRequestOperationManager.h"
#include "platform/value/Json.h"

namespace quillet::http {
namespace {

using platform::Error;
using platform::Value;
using Operation = std::shared_ptr<NKHTTPRequestOperation>;

class NKHTTPRequestOperationManagerTest : public OperationTest {};

TEST_F(NKHTTPRequestOperationManagerTest, GetDecodesJsonOnTheMainQueue) {
  auto manager = NKHTTPRequestOperationManager::manager();
  manager->requestSerializer =
      std::make_shared<NKHTTPRequestSerializer>(NKAppInfo{}, std::vector<std::string>{"de", "en"});
  Value reply;
  bool onMain = false;
  auto operation = manager->GET(
      server_.url("/json"), Value::dictionary({{"b", "x y"}, {"a", Value::dictionary({{"k", "&"}})}}),
      [&](const Operation&, const Value& object) {
        onMain = loop_->isCurrent();
        reply = object;
      },
      [&](const Operation&, const Error& error) { ADD_FAILURE() << error.description(); });
  ASSERT_TRUE(operation);
  manager.reset();  // the queue keeps the operation alive
  ASSERT_TRUE(runUntil([&] { return !reply.isNil(); }));
  EXPECT_TRUE(onMain);
  EXPECT_EQ(reply["query"], Value("a[k]=%26&b=x%20y"));
  EXPECT_EQ(reply["lang"], Value("de;q=1, en;q=0.9"));
  EXPECT_EQ(reply["status"], Value(1));
}

TEST_F(NKHTTPRequestOperationManagerTest, PlainSerializerHandsOnBytesAndRefuses404) {
  auto manager = NKHTTPRequestOperationManager::manager();
  manager->responseSerializer = NKHTTPResponseSerializer::serializer();
  Value bytes;
  manager->GET(
      server_.url("/html"), Value(), [&](const Operation&, const Value& object) { bytes = object; }, nullptr);
  std::optional<Error> failure;
  Operation failed;
  manager->GET(server_.url("/missing"), Value(), nullptr, [&](const Operation& operation, const Error& error) {
    failed = operation;
    failure = error;
  });
  ASSERT_TRUE(runUntil([&] { return !bytes.isNil() && failure; }));
  EXPECT_EQ(bytes, Value::bytes("<html></html>"));
  EXPECT_EQ(failure->code, -1011);
  EXPECT_EQ(failure->userInfo["NSLocalizedDescription"], Value("Request failed: not found (404)"));
  EXPECT_EQ(failed->responseString(), "gone");
  EXPECT_EQ(manager->operationQueue().operationCount(), 0u);
}

TEST_F(NKHTTPRequestOperationManagerTest, WrongContentTypeFailsWith1016) {
  auto manager = NKHTTPRequestOperationManager::manager();
  std::optional<Error> failure;
  manager->GET(server_.url("/html"), Value(), nullptr, [&](const Operation&, const Error& error) { failure = error; });
  ASSERT_TRUE(runUntil([&] { return failure.has_value(); }));
  EXPECT_EQ(failure->code, -1016);
  EXPECT_EQ(failure->domain, "com.kriozugin.error.serialization.response");
}

TEST_F(NKHTTPRequestOperationManagerTest, UnbuildableRequestFailsWithoutOperation) {
  auto manager = NKHTTPRequestOperationManager::manager();
  int failures = 0;
  bool nullOperation = false;
  auto operation = manager->GET("::no url::", Value(), nullptr, [&](const Operation& op, const Error&) {
    nullOperation = op == nullptr;
    ++failures;
  });
  EXPECT_FALSE(operation);
  EXPECT_EQ(failures, 0);  // delivered later, on the main queue
  ASSERT_TRUE(runUntil([&] { return failures > 0; }));
  EXPECT_TRUE(nullOperation);
}

TEST_F(NKHTTPRequestOperationManagerTest, BaseUrlAndImmediateCancel) {
  NKHTTPRequestOperationManager manager(server_.url("/nested"));
  EXPECT_EQ(manager.baseURL(), server_.url("/nested/"));
  int failures = 0;
  int64_t code = 0;
  auto operation = manager.GET("/hold", Value(), nullptr, [&](const Operation&, const Error& error) {
    code = error.code;
    ++failures;
  });
  ASSERT_TRUE(operation);
  EXPECT_EQ(operation->request().URL, server_.url("/hold"));
  operation->cancel();
  ASSERT_TRUE(runUntil([&] { return failures > 0; }));
  server_.open();
  loop_->runUntil([] { return false; }, 0.2);
  EXPECT_EQ(failures, 1);
  EXPECT_EQ(code, -999);
}

}  // namespace
}  // namespace quillet::http
