#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "news/services/MSGConfig.h"
#include "platform/value/Error.h"
#include "platform/value/Value.h"

namespace quillet::news {

// The messaging facade as the shell sees it. Handlers run on the main thread,
// with no error on success. The process-wide instance is unconfigured until
// the real service is installed.
class MSGService {
 public:
  using ErrorHandler = std::function<void(const std::optional<platform::Error>&)>;

  virtual ~MSGService() = default;
  static std::shared_ptr<MSGService> sharedInstance();
  static void setSharedInstance(std::shared_ptr<MSGService> service);

  virtual void startWithConfig(const MSGConfig& config) = 0;
  virtual void connectWithHandler(ErrorHandler handler) = 0;
  // A push that reached the app through the platform's path.
  virtual void appDidReceiveMessage(const platform::Value& message) = 0;
};

// No messaging configured: each call logs one line; a connect fails with a
// "com.stikri.msg" error.
class UnconfiguredMSGService : public MSGService {
 public:
  void startWithConfig(const MSGConfig& config) override;
  void connectWithHandler(ErrorHandler handler) override;
  void appDidReceiveMessage(const platform::Value& message) override;
};

}  // namespace quillet::news
