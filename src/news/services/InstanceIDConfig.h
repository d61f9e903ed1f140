#pragma once

#include <memory>

namespace quillet::news {

// Told by the instance ID service when the registration token must change.
class InstanceIDDelegate {
 public:
  virtual ~InstanceIDDelegate() = default;
  virtual void onTokenRefresh() = 0;
};

// How the instance ID service is started; the delegate is held weakly. Plain data.
class InstanceIDConfig {
 public:
  static InstanceIDConfig defaultConfig() { return InstanceIDConfig(); }
  void setDelegate(std::weak_ptr<InstanceIDDelegate> delegate) { delegate_ = std::move(delegate); }
  const std::weak_ptr<InstanceIDDelegate>& delegate() const { return delegate_; }

 private:
  std::weak_ptr<InstanceIDDelegate> delegate_;
};

}  // namespace quillet::news
