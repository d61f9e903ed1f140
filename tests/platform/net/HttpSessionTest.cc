#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "platform/net/HttpError.h"
#include "platform/net/HttpSession.h"
#include "platform/net/LocalServer.h"
#include "support/TempDir.h"
#include "support/TestCertificates.h"

namespace quillet::platform {
namespace {

// What a completion received; waited for with a bound on real time (for I/O,
// not timers).
struct Outcome {
  std::mutex mutex;
  std::condition_variable done;
  int calls = 0;
  bool onQueue = false;
  std::optional<HttpResponse> response;
  std::optional<Error> error;

  HttpCompletion completion(std::shared_ptr<DispatchQueue> queue) {
    return [this, queue](std::optional<HttpResponse> response, std::optional<Error> error) {
      std::lock_guard lock(mutex);
      ++calls;
      onQueue = queue->isCurrent();
      this->response = std::move(response);
      this->error = std::move(error);
      done.notify_all();
    };
  }
  bool await() {
    std::unique_lock lock(mutex);
    return done.wait_for(lock, std::chrono::seconds(10), [this] { return calls > 0; });
  }
  int64_t errorCode() const { return error ? error->code : 0; }
};

class HttpSessionTest : public ::testing::Test {
 protected:
  void SetUp() override {
    auto& http = server_.server();
    http.Get("/echo", [](const httplib::Request& request, httplib::Response& response) {
      response.set_header("X-Reply", "yes");
      response.set_content(request.get_param_value("q") + "|" + request.get_header_value("X-Token"),
                           "text/plain; charset=UTF-8");
    });
    http.Post("/echo", [](const httplib::Request& request, httplib::Response& response) {
      response.set_content(request.body, request.get_header_value("Content-Type"));
    });
    http.Get("/missing", [](const httplib::Request&, httplib::Response& response) {
      response.status = 404;
      response.set_content("gone", "text/plain");
    });
    http.Get("/moved",
             [](const httplib::Request&, httplib::Response& response) { response.set_redirect("/echo?q=moved", 302); });
    http.Post("/seeother", [](const httplib::Request&, httplib::Response& response) {
      response.set_redirect("/echo?q=after-post", 303);
    });
    http.Get("/hold", [this](const httplib::Request&, httplib::Response& response) {
      server_.wait();
      response.set_content("late", "text/plain");
    });
    http.Get("/chunks", [](const httplib::Request&, httplib::Response& response) {
      response.set_chunked_content_provider("text/plain", [](size_t offset, httplib::DataSink& sink) {
        if (offset < 3) {
          sink.write(offset == 0 ? "a" : offset == 1 ? "b" : "c", 1);
        } else {
          sink.done();
        }
        return true;
      });
    });
    server_.start();
  }

  HttpResponse get(HttpRequest request) {
    Outcome outcome;
    session_->start(std::move(request), queue_, outcome.completion(queue_));
    EXPECT_TRUE(outcome.await());
    EXPECT_FALSE(outcome.error) << outcome.error->localizedDescription();
    EXPECT_TRUE(outcome.onQueue);
    return outcome.response.value_or(HttpResponse());
  }

  LocalServer server_;
  std::shared_ptr<DispatchQueue> queue_ = DispatchQueue::makeSerial("quillet.test.http");
  std::unique_ptr<HttpSession> session_ = std::make_unique<HttpSession>();
};

TEST_F(HttpSessionTest, GetSendsHeadersAndQueryAndDeliversTheAnswerOnTheNamedQueue) {
  HttpRequest request(server_.url("/echo?q=a%20b"));
  request.headers.add("X-Token", "t1");
  const HttpResponse response = get(request);
  EXPECT_EQ(response.statusCode, 200);
  EXPECT_EQ(response.bodyString(), "a b|t1");
  EXPECT_EQ(response.url, request.url);
  EXPECT_EQ(response.headers.value("x-reply"), "yes");
  EXPECT_EQ(response.mimeType(), "text/plain");
  EXPECT_EQ(response.textEncodingName(), "UTF-8");
  EXPECT_TRUE(response.certificateChain.empty());

  const HttpResponse missing = get(HttpRequest(server_.url("/missing")));  // an answer, not a failure
  EXPECT_EQ(missing.statusCode, 404);
  EXPECT_EQ(missing.bodyString(), "gone");
}

TEST_F(HttpSessionTest, PostSendsTheBodyAsItStands) {
  HttpRequest request(server_.url("/echo"), "POST");
  request.headers.add("Content-Type", "application/octet-stream");
  request.body = {0, 1, 2, 255, 0};
  request.body.resize(5000,
                      7);  // larger than one buffer, sent without waiting for "100 Continue"
  EXPECT_EQ(get(request).body, request.body);
}

TEST_F(HttpSessionTest, RedirectsAreFollowedUnlessTheHookRefuses) {
  const HttpResponse followed = get(HttpRequest(server_.url("/moved")));
  EXPECT_EQ(followed.statusCode, 200);
  EXPECT_EQ(followed.bodyString(), "moved|");
  EXPECT_EQ(followed.url, server_.url("/echo?q=moved"));

  HttpRequest post(server_.url("/seeother"), "POST");
  post.setBody("x=1");
  EXPECT_EQ(get(post).bodyString(),
            "after-post|");  // 303 turns the POST into a GET

  HttpRequest refused(server_.url("/moved"));
  std::string seen;
  char thread[16] = {};
  refused.redirectHook = [&](const HttpResponse& redirect, const std::string& next) {
    pthread_getname_np(pthread_self(), thread, sizeof(thread));
    seen = std::to_string(redirect.statusCode) + " " + next;
    return false;
  };
  const HttpResponse kept = get(refused);
  EXPECT_EQ(seen, "302 " + server_.url("/echo?q=moved"));
  EXPECT_STREQ(thread, "quillet.http");
  EXPECT_EQ(kept.statusCode, 302);
  EXPECT_EQ(kept.headers.value("Location"), "/echo?q=moved");

  refused.redirectHook = nullptr;
  refused.followRedirects = false;
  EXPECT_EQ(get(refused).statusCode, 302);
}

TEST_F(HttpSessionTest, StreamingDeliversResponseThenChunksThenEndInOrder) {
  std::vector<std::string> events;
  Outcome end;
  HttpStreamCallbacks callbacks;
  callbacks.onResponse = [&](const HttpResponse& response) {
    events.push_back("response " + std::to_string(response.statusCode));
  };
  callbacks.onData = [&](const std::vector<uint8_t>& chunk) { events.emplace_back(chunk.begin(), chunk.end()); };
  callbacks.onComplete = [&](const std::optional<Error>& error) { end.completion(queue_)(std::nullopt, error); };
  session_->startStreaming(HttpRequest(server_.url("/chunks")), queue_, callbacks);
  ASSERT_TRUE(end.await());
  EXPECT_FALSE(end.error);
  ASSERT_FALSE(events.empty());
  EXPECT_EQ(events.front(), "response 200");
  std::string body;
  for (size_t i = 1; i < events.size(); ++i) body += events[i];
  EXPECT_EQ(body, "abc");
}

TEST_F(HttpSessionTest, CancelCompletesOnceWithCancelled) {
  Outcome outcome;
  auto task = session_->start(HttpRequest(server_.url("/hold")), queue_, outcome.completion(queue_));
  ASSERT_TRUE(server_.awaitHandler());
  task->cancel();
  task->cancel();
  ASSERT_TRUE(outcome.await());
  server_.open();
  session_.reset();     // joins the session's thread: nothing more can be posted
  queue_->sync([] {});  // runs whatever had been posted
  EXPECT_EQ(outcome.calls, 1);
  EXPECT_TRUE(task->isFinished());
  ASSERT_TRUE(outcome.error);
  EXPECT_EQ(outcome.error->domain, "NSURLErrorDomain");
  EXPECT_EQ(outcome.error->code, -999);
  EXPECT_EQ(outcome.error->userInfo["NSErrorFailingURLStringKey"].string(), server_.url("/hold"));
  EXPECT_EQ(outcome.error->localizedDescription(), "cancelled");
}

TEST_F(HttpSessionTest, SessionEndCancelsWhatIsInFlight) {
  Outcome outcome;
  session_->start(HttpRequest(server_.url("/hold")), queue_, outcome.completion(queue_));
  ASSERT_TRUE(server_.awaitHandler());
  session_.reset();
  ASSERT_TRUE(outcome.await());
  EXPECT_EQ(outcome.errorCode(), -999);
}

TEST_F(HttpSessionTest, SilentServerTimesOut) {
  Outcome outcome;
  HttpRequest request(server_.url("/hold"));
  request.timeoutSeconds = 0.3;  // the transport's own real time-out
  session_->start(request, queue_, outcome.completion(queue_));
  ASSERT_TRUE(outcome.await());
  EXPECT_EQ(outcome.errorCode(), -1001);
  EXPECT_FALSE(outcome.response);
}

TEST_F(HttpSessionTest, RefusedConnectionFails) {
  // A port that was free a moment ago and has no listener.
  const int probe = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof(address);
  ASSERT_EQ(bind(probe, reinterpret_cast<sockaddr*>(&address), length), 0);
  getsockname(probe, reinterpret_cast<sockaddr*>(&address), &length);
  close(probe);

  Outcome outcome;
  session_->start(HttpRequest("http://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/"), queue_,
                  outcome.completion(queue_));
  ASSERT_TRUE(outcome.await());
  EXPECT_EQ(outcome.errorCode(), -1004);

  Outcome bad;
  session_->start(HttpRequest("ftp://127.0.0.1/"), queue_, bad.completion(queue_));
  ASSERT_TRUE(bad.await());
  EXPECT_EQ(bad.errorCode(), -1002);
}

TEST(HttpSessionTlsTest, VerifiesTheServerAgainstTheConfiguredAuthority) {
  testing::TempDir dir;
  const auto certificates = testing::makeTestCertificates(dir.path());
  LocalServer server(certificates.certFile.string(), certificates.keyFile.string());
  server.server().Get(
      "/", [](const httplib::Request&, httplib::Response& response) { response.set_content("secret", "text/plain"); });
  server.start();
  auto queue = DispatchQueue::makeSerial("quillet.test.https");

  HttpSessionOptions options;
  options.caFile = certificates.caFile.string();
  HttpSession trusting(options);
  Outcome good;
  trusting.start(HttpRequest(server.url("/", "https")), queue, good.completion(queue));
  ASSERT_TRUE(good.await());
  ASSERT_FALSE(good.error) << good.error->localizedDescription();
  EXPECT_EQ(good.response->bodyString(), "secret");
  ASSERT_FALSE(good.response->certificateChain.empty());
  EXPECT_EQ(good.response->certificateChain.front()[0], 0x30);  // a DER sequence

  HttpSession systemStore;
  Outcome untrusted;
  systemStore.start(HttpRequest(server.url("/", "https")), queue, untrusted.completion(queue));
  ASSERT_TRUE(untrusted.await());
  EXPECT_EQ(untrusted.errorCode(), -1202);

  // A trust hook judges the server itself, seeing what the transport found.
  std::vector<HttpServerTrust> seen;
  HttpRequest judged(server.url("/", "https"));
  judged.serverTrustHook = [&](const HttpServerTrust& trust) {
    seen.push_back(trust);
    return seen.size() == 1;
  };
  Outcome accepted;
  systemStore.start(judged, queue, accepted.completion(queue));
  ASSERT_TRUE(accepted.await());
  EXPECT_FALSE(accepted.error);
  Outcome refused;
  systemStore.start(judged, queue, refused.completion(queue));
  ASSERT_TRUE(refused.await());
  EXPECT_EQ(refused.errorCode(), -999);
  Outcome anchored;
  trusting.start(judged, queue, anchored.completion(queue));
  ASSERT_TRUE(anchored.await());
  ASSERT_EQ(seen.size(), 3u);  // each judged request opened its own connection
  EXPECT_EQ(seen[0].host, "127.0.0.1");
  EXPECT_FALSE(seen[0].chainTrusted);
  EXPECT_TRUE(seen[0].hostMatches);
  EXPECT_EQ(seen[0].certificateChain, good.response->certificateChain);
  EXPECT_TRUE(seen[2].chainTrusted);
}

}  // namespace
}  // namespace quillet::platform
