#include "instanceid/checkin/InstanceIDCheckinService.h"

#include <random>

#include "instanceid/checkin/InstanceIDDevice.h"
#include "instanceid/support/InstanceIDError.h"
#include "instanceid/support/InstanceIDLogger.h"
#include "platform/registry/ClassRegistry.h"
#include "platform/text/DeviceLocale.h"
#include "platform/value/Json.h"

namespace quillet::instanceid {
namespace {

std::mutex& testBlockMutex() {
  static auto* mutex = new std::mutex();
  return *mutex;
}

InstanceIDCheckinService::CheckinTestBlock& testBlock() {
  // Never destroyed: a queue may still ask for it while the process exits.
  static auto* block = new InstanceIDCheckinService::CheckinTestBlock();
  return *block;
}

std::string checkinLocale() {
  const auto locale = platform::ClassRegistry::shared().call("MSGService", "MSGSDKCurrentLocale");
  if (locale && locale->isString()) return locale->string();
  const auto languages = platform::DeviceLocale::preferredLanguages();
  return languages.empty() ? std::string() : languages.front();
}

uint32_t loggingID() {
  static thread_local std::mt19937 generator{std::random_device{}()};
  return static_cast<uint32_t>(generator());
}

// The exact decimal text of a JSON number; a string stands as it is; else "".
std::string decimalText(const nlohmann::json& answer, const char* key) {
  if (!answer.is_object()) return "";
  const auto found = answer.find(key);
  if (found == answer.end()) return "";
  if (found->is_number_unsigned()) return std::to_string(found->get<uint64_t>());
  if (found->is_number_integer()) return std::to_string(found->get<int64_t>());
  if (found->is_number_float()) return platform::Value(found->get<double>()).description();
  if (found->is_string()) return found->get<std::string>();
  return "";
}

std::string stringOf(const platform::Value& answer, const char* key) {
  const platform::Value& value = answer[key];
  return value.isString() ? value.string() : std::string();
}

// Each "setting" entry with a name and a value; later names win.
platform::Value::Dictionary settingsOf(const platform::Value& answer) {
  platform::Value::Dictionary settings;
  const platform::Value& list = answer["setting"];
  if (!list.isArray()) return settings;
  for (const platform::Value& entry : list.arrayItems()) {
    const platform::Value& name = entry["name"];
    const platform::Value& value = entry["value"];
    if (!name.isString() || value.isNil() || value.isNull()) continue;
    settings[name.string()] = value;
  }
  return settings;
}

}  // namespace

InstanceIDCheckinService::InstanceIDCheckinService(std::weak_ptr<InstanceIDCheckinCache> checkinCache,
                                                   std::shared_ptr<const InstanceIDEnvironment> env)
    : checkinCache_(std::move(checkinCache)),
      env_(std::move(env)),
      queue_(platform::DispatchQueue::makeSerial(kQueueLabel)) {
  if (auto cache = checkinCache_.lock()) checkinPreferences_ = cache->cachedCheckinPreferences();
}

InstanceIDCheckinService::~InstanceIDCheckinService() { stopFetching(); }

void InstanceIDCheckinService::setCheckinTestBlock(CheckinTestBlock block) {
  std::lock_guard lock(testBlockMutex());
  testBlock() = std::move(block);
}

std::shared_ptr<InstanceIDCheckinPreferences> InstanceIDCheckinService::checkinPreferences() const {
  std::lock_guard lock(mutex_);
  return checkinPreferences_;
}

void InstanceIDCheckinService::adoptPreferences(std::shared_ptr<InstanceIDCheckinPreferences> preferences) {
  std::lock_guard lock(mutex_);
  checkinPreferences_ = std::move(preferences);
}

void InstanceIDCheckinService::stopFetching() {
  std::lock_guard lock(mutex_);
  if (session_) session_->invalidateAndCancel();
}

nlohmann::json InstanceIDCheckinService::checkinParameters() const {
  const auto preferences = checkinPreferences();
  const int64_t lastCheckin = preferences ? preferences->lastCheckinTimestampMillis() : 0;
  const std::string digest = preferences ? preferences->digest() : std::string();
  const int64_t deviceID = preferences ? platform::Value(preferences->deviceID()).integerValue() : 0;
  const int64_t secret = preferences ? platform::Value(preferences->secretToken()).integerValue() : 0;
  std::string osVersion = "IOS_";
  osVersion.append(env_->systemVersion);
  return {
      {"checkin",
       {{"iosbuild", {{"model", InstanceIDDevice::modelVersion().value_or("")}, {"os_version", osVersion}}},
        {"type", 2},
        {"user_number", 0},
        {"last_checkin_msec", lastCheckin}}},
      {"fragment", 0},
      {"logging_id", loggingID()},
      {"locale", checkinLocale()},
      {"version", 2},
      {"digest", digest},
      {"timezone", platform::DeviceLocale::timeZoneId()},
      {"user_serial_number", 0},
      {"id", deviceID},
      {"security_token", secret},
  };
}

void InstanceIDCheckinService::checkinWithCompletion(CheckinCompletion completion) {
  platform::HttpRequest request(env_->checkinURL, "POST");
  request.headers.set("content-type", "application/json");
  request.setBody(checkinParameters().dump());
  request.timeoutSeconds = kResourceTimeoutSeconds;

  std::weak_ptr<InstanceIDCheckinService> weakSelf = weak_from_this();
  auto handle = [weakSelf, completion](const std::string& body, const std::optional<platform::Error>& error) {
    if (auto self = weakSelf.lock()) {
      self->handleCheckinResponse(body, error, completion);
    } else if (completion) {
      completion(nullptr, error.value_or(errorWithInstanceIDErrorCode(InstanceIDErrorCodeUnknown)));
    }
  };

  CheckinTestBlock block;
  {
    std::lock_guard lock(testBlockMutex());
    block = testBlock();
  }
  if (block) {
    auto queue = queue_;
    block(request, [queue, handle](int, std::string body, std::optional<platform::Error> error) {
      queue->async([handle, body = std::move(body), error = std::move(error)] { handle(body, error); });
    });
    return;
  }

  platform::HttpSessionOptions options = env_->sessionOptions;
  options.resourceTimeoutSeconds = kResourceTimeoutSeconds;
  auto session = std::make_unique<platform::HttpSession>(options);
  session->start(std::move(request), queue_,
                 [handle](std::optional<platform::HttpResponse> response, std::optional<platform::Error> error) {
                   handle(response ? response->bodyString() : std::string(), error);
                 });
  std::unique_ptr<platform::HttpSession> previous;
  {
    std::lock_guard lock(mutex_);
    previous = std::move(session_);
    session_ = std::move(session);
  }
}

void InstanceIDCheckinService::handleCheckinResponse(const std::string& body,
                                                     const std::optional<platform::Error>& transportError,
                                                     const CheckinCompletion& completion) {
  auto finish = [&completion](std::shared_ptr<InstanceIDCheckinPreferences> preferences,
                              std::optional<platform::Error> error) {
    if (completion) completion(std::move(preferences), std::move(error));
  };
  if (transportError) return finish(nullptr, transportError);

  // The platform's reader gives the phone's parse error and bounds the
  // nesting; the second read keeps the exact digits of 64-bit numbers.
  platform::Error parseError;
  const platform::Value answer = platform::jsonDecode(body, &parseError);
  if (answer.isNil()) return finish(nullptr, parseError);
  const nlohmann::json exact = nlohmann::json::parse(body, nullptr, false);

  const std::string deviceID = decimalText(exact, "android_id");
  if (deviceID.empty()) return finish(nullptr, errorWithInstanceIDErrorCode(InstanceIDErrorCodeUnknown));
  const std::string secret = decimalText(exact, "security_token");

  int64_t lastCheckin = answer["time_msec"].integerValue();
  const int64_t now = env_->nowMillis();
  if (lastCheckin > now) {
    iidLogDebug("Invalid last checkin timestamp in future.");
    lastCheckin = now;
  }
  const platform::Value::Dictionary plistContents = {
      {InstanceIDCheckinPreferences::kDeviceDataVersionKey,
       platform::Value(stringOf(answer, "device_data_version_info"))},
      {InstanceIDCheckinPreferences::kDigestKey, platform::Value(stringOf(answer, "digest"))},
      {InstanceIDCheckinPreferences::kVersionInfoKey, platform::Value(stringOf(answer, "version_info"))},
      {InstanceIDCheckinPreferences::kLastCheckinTimestampKey, platform::Value(static_cast<long long>(lastCheckin))},
      {InstanceIDCheckinPreferences::kServicesDataKey, platform::Value(settingsOf(answer))},
  };

  auto preferences = std::make_shared<InstanceIDCheckinPreferences>(deviceID, secret);
  preferences->updateWithCheckinPlistContents(plistContents);
  platform::Error saveError;
  const auto cache = checkinCache_.lock();
  if (cache && cache->saveCheckinPreferences(*preferences, &saveError)) {
    adoptPreferences(preferences);
    return finish(preferences, std::nullopt);
  }
  iidLogError("STOP!! Will reset deviceID.");
  preferences->reset();
  adoptPreferences(preferences);
  finish(nullptr, errorWithInstanceIDErrorCode(InstanceIDErrorCodeMissingCredential));
}

}  // namespace quillet::instanceid
