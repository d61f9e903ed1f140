#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "instanceid/store/InstanceIDCheckinCache.h"
#include "instanceid/store/InstanceIDCheckinPreferences.h"
#include "instanceid/support/InstanceIDEnvironment.h"
#include "platform/dispatch/DispatchQueue.h"
#include "platform/net/HttpRequest.h"
#include "platform/net/HttpSession.h"
#include "platform/value/Error.h"

namespace quillet::instanceid {

// Device check-in: one JSON POST to the check-in endpoint that gives the
// device credential, kept through the check-in cache. Completions run on a
// serial queue of the service's own. The cache is held weakly (its owner,
// the facade's store, outlives the service). Create with std::make_shared.
class InstanceIDCheckinService : public std::enable_shared_from_this<InstanceIDCheckinService> {
 public:
  using CheckinCompletion = std::function<void(std::shared_ptr<InstanceIDCheckinPreferences> preferences,
                                               std::optional<platform::Error> error)>;
  // A replacement transport's answer: status, body, or a transport error.
  using CheckinTestResponder =
      std::function<void(int statusCode, std::string body, std::optional<platform::Error> error)>;
  using CheckinTestBlock = std::function<void(const platform::HttpRequest& request, CheckinTestResponder respond)>;

  static constexpr const char* kQueueLabel = "com.stikri.iid.checkin";
  static constexpr double kResourceTimeoutSeconds = 60.0;

  // Loads the cached preferences once; from then on the object in memory is the truth.
  InstanceIDCheckinService(std::weak_ptr<InstanceIDCheckinCache> checkinCache,
                           std::shared_ptr<const InstanceIDEnvironment> env);
  ~InstanceIDCheckinService();
  InstanceIDCheckinService(const InstanceIDCheckinService&) = delete;
  InstanceIDCheckinService& operator=(const InstanceIDCheckinService&) = delete;

  // Sends a check-in with the current credential (a new session each time)
  // and, on an answer with a device ID, saves and adopts the new one.
  // `completion` gets (preferences, nullopt) or (null, error): the transport
  // or JSON error, code 0 without "android_id", code 6 when saving failed.
  void checkinWithCompletion(CheckinCompletion completion);
  // Cancels the request in flight (its completion gets the cancellation).
  void stopFetching();
  // The request body for the current preferences.
  nlohmann::json checkinParameters() const;
  // The current preferences, or null. Thread-safe.
  std::shared_ptr<InstanceIDCheckinPreferences> checkinPreferences() const;

  // Installs (or, with an empty block, removes) a process-wide replacement
  // transport: the built request and a responder go to it instead of the
  // network. The responder may be called from any thread.
  static void setCheckinTestBlock(CheckinTestBlock block);

  const std::shared_ptr<platform::DispatchQueue>& queue() const { return queue_; }

 private:
  void handleCheckinResponse(const std::string& body, const std::optional<platform::Error>& transportError,
                             const CheckinCompletion& completion);
  void adoptPreferences(std::shared_ptr<InstanceIDCheckinPreferences> preferences);

  std::weak_ptr<InstanceIDCheckinCache> checkinCache_;
  std::shared_ptr<const InstanceIDEnvironment> env_;
  std::shared_ptr<platform::DispatchQueue> queue_;
  mutable std::mutex mutex_;
  std::shared_ptr<InstanceIDCheckinPreferences> checkinPreferences_;
  std::unique_ptr<platform::HttpSession> session_;  // after queue_: goes first
};

}  // namespace quillet::instanceid
