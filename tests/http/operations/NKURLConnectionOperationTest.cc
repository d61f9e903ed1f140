#include <pthread.h>

#include <future>

#include "OperationTestSupport.h"
#include "http/operations/NKHTTPRequestOperation.h"
#include "http/operations/NKNetworkThread.h"
#include "platform/notifications/NotificationCenter.h"

namespace quillet::http {
namespace {

using platform::Error;
using platform::Value;
using Op = NKURLConnectionOperation;

TEST(NKOperationStateTest, TransitionsOutsideTheTableAreDropped) {
  auto operation = Op::make(NKURLRequest("http://127.0.0.1:9/"));
  std::vector<std::string> keys;
  operation->setKeyChangeObserver([&](const std::string& key) { keys.push_back(key); });

  operation->setState(Op::NKOperationFinishedState);  // Ready -> Finished only when cancelled
  EXPECT_TRUE(operation->isReady());
  operation->setState(Op::NKOperationPausedState);
  operation->setState(Op::NKOperationExecutingState);  // Paused -> Ready only
  EXPECT_TRUE(operation->isPaused());
  operation->setState(Op::NKOperationReadyState);
  operation->setState(Op::NKOperationExecutingState);
  operation->setState(Op::NKOperationReadyState);  // Executing -> Paused or Finished only
  EXPECT_TRUE(operation->isExecuting());
  operation->setState(Op::NKOperationFinishedState);
  EXPECT_EQ(keys, (std::vector<std::string>{"isReady", "isPaused", "isPaused", "isReady", "isReady", "isExecuting",
                                            "isExecuting", "isFinished"}));
  keys.clear();
  for (auto state : {Op::NKOperationPausedState, Op::NKOperationReadyState, Op::NKOperationExecutingState}) {
    operation->setState(state);
  }
  EXPECT_TRUE(operation->isFinished());
  EXPECT_TRUE(keys.empty());

  // Pause, resume and cancel of a finished operation change nothing.
  operation->pause();
  operation->resume();
  operation->cancel();
  EXPECT_TRUE(operation->isFinished());
  EXPECT_FALSE(operation->isCancelled());
  EXPECT_TRUE(keys.empty());
}

TEST(NKNetworkThreadTest, IsOneThreadNamedNetKit) {
  std::promise<std::string> name;
  NKNetworkThread::shared().queue()->async([&] {
    char buffer[32] = {};
    pthread_getname_np(pthread_self(), buffer, sizeof buffer);
    name.set_value(buffer);
  });
  EXPECT_EQ(name.get_future().get(), "NetKit");
  EXPECT_EQ(&NKNetworkThread::shared(), &NKNetworkThread::shared());
}

class NKURLConnectionOperationTest : public OperationTest {};

TEST_F(NKURLConnectionOperationTest, CancelBeforeStartFinishesOnceWithCancelled) {
  auto operation = NKHTTPRequestOperation::make(NKURLRequest(server_.url("/json")));
  int failures = 0;
  int successes = 0;
  std::optional<Error> seen;
  operation->setCompletionBlockWithSuccess([&](auto&, const Value&) { ++successes; },
                                           [&](const auto& op, const Error& error) {
                                             EXPECT_EQ(op, operation);
                                             seen = error;
                                             ++failures;
                                           });
  operation->cancel();
  operation->start();
  ASSERT_TRUE(runUntil([&] { return failures > 0; }));
  operation->start();
  operation->cancel();
  loop_->runUntil([] { return false; }, 0.2);
  EXPECT_EQ(failures, 1);
  EXPECT_EQ(successes, 0);
  EXPECT_TRUE(operation->isFinished());
  EXPECT_EQ(seen->domain, "NSURLErrorDomain");
  EXPECT_EQ(seen->code, -999);
  EXPECT_EQ(seen->userInfo["NSErrorFailingURLKey"], Value(server_.url("/json")));
}

TEST_F(NKURLConnectionOperationTest, CancelDuringRequestAndBroadcasts) {
  auto operation = NKHTTPRequestOperation::make(NKURLRequest(server_.url("/hold")));
  std::vector<std::string> broadcasts;
  auto& center = platform::NotificationCenter::defaultCenter();
  auto token = center.addObserver("", operation.get(), [&](const platform::Notification& note) {
    EXPECT_TRUE(loop_->isCurrent());
    broadcasts.push_back(note.name);
  });
  int failures = 0;
  int64_t code = 0;
  operation->setCompletionBlockWithSuccess(nullptr, [&](auto&, const Error& error) {
    code = error.code;
    ++failures;
  });
  operation->start();
  ASSERT_TRUE(server_.awaitHandler());
  operation->cancel();
  ASSERT_TRUE(runUntil([&] { return failures > 0 && broadcasts.size() == 2; }));
  server_.open();
  loop_->runUntil([] { return false; }, 0.2);
  EXPECT_EQ(failures, 1);
  EXPECT_EQ(code, -999);
  EXPECT_EQ(broadcasts, (std::vector<std::string>{"com.kriozugin.networking.operation.start",
                                                  "com.kriozugin.networking.operation.finish"}));
  center.removeObserver(token);
}

TEST_F(NKURLConnectionOperationTest, ResponseObjectWaitsForTheEnd) {
  struct Counting : NKHTTPResponseSerializer {
    mutable std::atomic<int> calls{0};
    mutable std::string label;
    Value responseObjectForResponse(const platform::HttpResponse* response, const std::vector<uint8_t>* data,
                                    std::optional<Error>* error) const override {
      ++calls;
      label = platform::DispatchQueue::currentLabel();
      return NKHTTPResponseSerializer::responseObjectForResponse(response, data, error);
    }
  };
  auto serializer = std::make_shared<Counting>();
  auto operation = NKHTTPRequestOperation::make(NKURLRequest(server_.url("/missing")));
  operation->setResponseSerializer(serializer);
  EXPECT_TRUE(operation->responseObject().isNil());
  EXPECT_EQ(serializer->calls, 0);

  auto completion = platform::DispatchQueue::makeSerial("test.completion");
  operation->completionQueue = completion;
  std::atomic<bool> done{false};
  std::optional<Error> seen;
  bool onCompletionQueue = false;
  operation->setCompletionBlockWithSuccess(nullptr, [&](auto&, const Error& error) {
    onCompletionQueue = completion->isCurrent();
    seen = error;
    done = true;
    loop_->post([] {});  // wakes the main loop that waits for this
  });
  operation->start();
  ASSERT_TRUE(runUntil([&] { return done.load(); }));
  EXPECT_TRUE(onCompletionQueue);
  EXPECT_EQ(serializer->label, "com.kriozugin.networking.http-request.processing");
  EXPECT_EQ(seen->code, -1011);
  EXPECT_EQ(operation->error()->code, -1011);
  EXPECT_EQ(operation->responseData(), (std::vector<uint8_t>{'g', 'o', 'n', 'e'}));
  EXPECT_EQ(operation->responseString(), "gone");
  EXPECT_EQ(operation->response()->statusCode, 404);
  operation->responseObject();
  EXPECT_EQ(serializer->calls, 1);
}

}  // namespace
}  // namespace quillet::http
