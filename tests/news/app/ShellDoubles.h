#pragma once

// Services that answer as the test says, recording what the shell asked.
#include <optional>
#include <string>
#include <vector>

#include "news/services/AppServices.h"

namespace quillet::news::testing {

struct FakeContext : ServiceContext {
  ServiceConfiguration config{"sender-77"};
  bool configureWithError(platform::Error*) override { return true; }
  const ServiceConfiguration& configuration() const override { return config; }
};

struct FakeMSGService : MSGService {
  std::vector<std::string>* calls;
  std::optional<platform::Error> connectError;
  explicit FakeMSGService(std::vector<std::string>* c) : calls(c) {}
  void startWithConfig(const MSGConfig&) override { calls->push_back("msg.start"); }
  void connectWithHandler(ErrorHandler handler) override {
    calls->push_back("msg.connect");
    handler(connectError);
  }
  void appDidReceiveMessage(const platform::Value&) override { calls->push_back("msg.message"); }
};

struct FakePubSub : MSGPubSub {
  std::vector<std::string>* calls;
  std::optional<platform::Error> answer;
  explicit FakePubSub(std::vector<std::string>* c) : calls(c) {}
  void subscribeWithToken(const std::string& token, const std::string& topic, const platform::Value&,
                          ErrorHandler handler) override {
    calls->push_back("subscribe " + token + " " + topic);
    handler(answer);
  }
};

struct FakeInstanceIDService : InstanceIDService {
  std::vector<std::string>* calls;
  std::optional<std::string> token;
  platform::Value lastOptions;
  explicit FakeInstanceIDService(std::vector<std::string>* c) : calls(c) {}
  void startWithConfig(const InstanceIDConfig&) override { calls->push_back("iid.start"); }
  void tokenWithAuthorizedEntity(const std::string& entity, const std::string& scope, const platform::Value& options,
                                 TokenHandler handler) override {
    calls->push_back("token " + entity + " " + scope);
    lastOptions = options;
    if (token) {
      handler(token, std::nullopt);
    } else {
      handler(std::nullopt,
              platform::Error("com.stikri.iid", 5,
                              platform::Value::dictionary({{"NSLocalizedDescription", "no token today"}})));
    }
  }
};

}  // namespace quillet::news::testing
