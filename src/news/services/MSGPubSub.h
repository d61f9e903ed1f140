#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/value/Error.h"
#include "platform/value/Value.h"

namespace quillet::news {

// Topic subscriptions as the shell sees them. The handler runs on the main
// thread, with no error on success; code 3001 means already subscribed.
class MSGPubSub {
 public:
  using ErrorHandler = std::function<void(const std::optional<platform::Error>&)>;

  virtual ~MSGPubSub() = default;
  static std::shared_ptr<MSGPubSub> sharedInstance();
  static void setSharedInstance(std::shared_ptr<MSGPubSub> pubSub);

  virtual void subscribeWithToken(const std::string& token, const std::string& topic, const platform::Value& options,
                                  ErrorHandler handler) = 0;
};

// No messaging configured: logs one line and fails with a "com.stikri.msg" error.
class UnconfiguredMSGPubSub : public MSGPubSub {
 public:
  void subscribeWithToken(const std::string& token, const std::string& topic, const platform::Value& options,
                          ErrorHandler handler) override;
};

}  // namespace quillet::news
