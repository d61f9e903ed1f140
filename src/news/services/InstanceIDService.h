#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "news/services/InstanceIDConfig.h"
#include "platform/value/Error.h"
#include "platform/value/Value.h"

namespace quillet::news {

// The instance ID facade as the shell sees it. A token request answers on
// the main thread with a token and no error, or no token and an error.
class InstanceIDService {
 public:
  using TokenHandler =
      std::function<void(const std::optional<std::string>& token, const std::optional<platform::Error>& error)>;

  virtual ~InstanceIDService() = default;
  static std::shared_ptr<InstanceIDService> sharedInstance();
  static void setSharedInstance(std::shared_ptr<InstanceIDService> instanceID);

  virtual void startWithConfig(const InstanceIDConfig& config) = 0;
  // `options` is a dictionary or nil.
  virtual void tokenWithAuthorizedEntity(const std::string& authorizedEntity, const std::string& scope,
                                         const platform::Value& options, TokenHandler handler) = 0;
};

// No instance ID configured: logs one line; a token request fails with a
// "com.stikri.iid" error and no token.
class UnconfiguredInstanceIDService : public InstanceIDService {
 public:
  void startWithConfig(const InstanceIDConfig& config) override;
  void tokenWithAuthorizedEntity(const std::string& authorizedEntity, const std::string& scope,
                                 const platform::Value& options, TokenHandler handler) override;
};

}  // namespace quillet::news
