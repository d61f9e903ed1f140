#pragma once

#include <memory>

namespace quillet::news {

// The receiver of messages the messaging service delivers to the app. The
// shell implements it with no operation of its own.
class MSGReceiverDelegate {
 public:
  virtual ~MSGReceiverDelegate() = default;
};

// How the messaging service is started. The receiver delegate is held weakly:
// the app delegate owns itself for the life of the process. Plain data.
class MSGConfig {
 public:
  static MSGConfig defaultConfig() { return MSGConfig(); }
  void setReceiverDelegate(std::weak_ptr<MSGReceiverDelegate> delegate) { receiverDelegate_ = std::move(delegate); }
  const std::weak_ptr<MSGReceiverDelegate>& receiverDelegate() const { return receiverDelegate_; }

 private:
  std::weak_ptr<MSGReceiverDelegate> receiverDelegate_;
};

}  // namespace quillet::news
