#pragma once

#include <memory>

#include "instanceid/facade/InstanceID.h"
#include "news/services/InstanceIDService.h"

namespace quillet::news {

// The shell's instance ID: the subsystem's facade behind the interface the
// shell calls. The shell's delegate is held weakly, through a forwarder that
// lives as long as the bridge. Main thread, as the facade.
class InstanceIDBridge : public InstanceIDService {
 public:
  explicit InstanceIDBridge(std::shared_ptr<instanceid::InstanceID> facade);
  ~InstanceIDBridge() override;

  void startWithConfig(const InstanceIDConfig& config) override;
  void tokenWithAuthorizedEntity(const std::string& authorizedEntity, const std::string& scope,
                                 const platform::Value& options, TokenHandler handler) override;

  const std::shared_ptr<instanceid::InstanceID>& facade() const { return facade_; }

 private:
  class DelegateForwarder;

  std::shared_ptr<instanceid::InstanceID> facade_;
  std::shared_ptr<DelegateForwarder> forwarder_;
};

}  // namespace quillet::news
