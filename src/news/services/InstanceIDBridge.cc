#include "news/services/InstanceIDBridge.h"

namespace quillet::news {

// Hands the facade's refresh call on to the shell's delegate while it lives.
class InstanceIDBridge::DelegateForwarder : public instanceid::InstanceIDDelegate {
 public:
  explicit DelegateForwarder(std::weak_ptr<news::InstanceIDDelegate> target) : target_(std::move(target)) {}
  void onTokenRefresh() override {
    if (auto target = target_.lock()) target->onTokenRefresh();
  }

 private:
  std::weak_ptr<news::InstanceIDDelegate> target_;
};

InstanceIDBridge::InstanceIDBridge(std::shared_ptr<instanceid::InstanceID> facade) : facade_(std::move(facade)) {}

InstanceIDBridge::~InstanceIDBridge() = default;

void InstanceIDBridge::startWithConfig(const InstanceIDConfig& config) {
  forwarder_ = std::make_shared<DelegateForwarder>(config.delegate());
  instanceid::InstanceIDConfig facadeConfig = instanceid::InstanceIDConfig::defaultConfig();
  facadeConfig.delegate = forwarder_;
  facade_->startWithConfig(facadeConfig);
}

void InstanceIDBridge::tokenWithAuthorizedEntity(const std::string& authorizedEntity, const std::string& scope,
                                                 const platform::Value& options, TokenHandler handler) {
  facade_->tokenWithAuthorizedEntity(authorizedEntity, scope, options, std::move(handler));
}

}  // namespace quillet::news
