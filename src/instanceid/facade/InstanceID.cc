#include "instanceid/facade/InstanceID.h"

#include "instanceid/checkin/InstanceIDAuthService.h"
#include "instanceid/keypair/InstanceIDKeyPairStore.h"
#include "instanceid/store/InstanceIDCheckinPreferences.h"
#include "instanceid/support/InstanceIDError.h"
#include "instanceid/support/InstanceIDLogger.h"
#include "instanceid/tokens/InstanceIDTokenManager.h"
#include "platform/dispatch/DispatchQueue.h"
#include "platform/keychain/Keychain.h"
#include "platform/support/Text.h"
#include "platform/value/Format.h"

namespace quillet::instanceid {

using platform::DispatchQueue;
using platform::Error;
using platform::textOf;
using platform::Value;

namespace {

constexpr const char* kAPNSTokenKey = "apns_token";
constexpr const char* kAPNSSandboxKey = "apns_sandbox";
// Stands for "no error so far" inside the request checks; never reported.
constexpr double kCommandDelaySeconds = 2.0;

const char* typeName(const Value& value) {
  switch (value.type()) {
    case Value::Type::Nil:
      return "(null)";
    case Value::Type::Null:
      return "Null";
    case Value::Type::Bool:
      return "Boolean";
    case Value::Type::Integer:
    case Value::Type::Double:
      return "Number";
    case Value::Type::String:
      return "String";
    case Value::Type::Bytes:
      return "Data";
    case Value::Type::Date:
      return "Date";
    case Value::Type::Array:
      return "Array";
    case Value::Type::Dictionary:
      return "Dictionary";
    case Value::Type::Object:
      return "Object";
  }
  return "Object";
}

Value::Dictionary dictionaryOf(const Value& options) {
  return options.isDictionary() ? options.dictionaryItems() : Value::Dictionary();
}

std::optional<Error> errorIfSet(const Error& error) {
  if (error.ok()) return std::nullopt;
  return error;
}

}  // namespace

std::shared_ptr<InstanceID> InstanceID::sharedInstance() {
  // Never destroyed: queues may still answer through it while the process exits.
  static auto* instance =
      new std::shared_ptr<InstanceID>(std::make_shared<InstanceID>(InstanceIDEnvironment::standard()));
  return *instance;
}

InstanceID::InstanceID(std::shared_ptr<const InstanceIDEnvironment> env) : env_(std::move(env)) {}

InstanceID::~InstanceID() {
  if (observer_ != 0) platform::NotificationCenter::defaultCenter().removeObserver(observer_);
}

void InstanceID::startWithConfig(const InstanceIDConfig& config) {
  config_ = config;
  InstanceIDLogger::shared().setFilter(std::make_shared<InstanceIDLogLevelFilter>(config.logLevel));
  tokenManager_ = std::make_shared<InstanceIDTokenManager>(env_);
  tokenManager_->setAllowMissingAPNSToken(config.allowMSGRegistrationWithoutAPNSToken);
  keyPairStore_ = std::make_shared<InstanceIDKeyPairStore>(env_);
  refreshTokenDelegate_ = config.delegate;
  observer_ = platform::NotificationCenter::defaultCenter().addObserver(
      kMSGNotificationName, nullptr, [weak = weak_from_this()](const platform::Notification& notification) {
        if (auto self = weak.lock()) self->didReceiveMSGMessage(notification);
      });
  InstanceIDCommandHandler::setShared(weak_from_this());
}

bool InstanceID::allowsMissingAPNSToken() const { return config_ && config_->allowMSGRegistrationWithoutAPNSToken; }

// Handlers ---------------------------------------------------------------

void InstanceID::asyncInvokeGetTokenHandler(TokenHandler handler, const std::optional<std::string>& token,
                                            const std::optional<Error>& error) {
  if (!handler) return;
  DispatchQueue::main()->async([handler = std::move(handler), token, error] { handler(token, error); });
}

void InstanceID::asyncInvokeDeleteTokenHandler(DeleteHandler handler, const std::optional<Error>& error) {
  if (!handler) return;
  DispatchQueue::main()->async([handler = std::move(handler), error] { handler(error); });
}

void InstanceID::asyncInvokeGetIDHandler(IDHandler handler, const std::optional<std::string>& identity,
                                         const std::optional<Error>& error) {
  if (!handler) return;
  DispatchQueue::main()->async([handler = std::move(handler), identity, error] { handler(identity, error); });
}

void InstanceID::asyncInvokeDeleteIDHandler(DeleteHandler handler, const std::optional<Error>& error) {
  asyncInvokeDeleteTokenHandler(std::move(handler), error);
}

// Options ----------------------------------------------------------------

bool InstanceID::verifyNewTokenOptions(const Value& options, const InstanceIDConfig& config) {
  if (!options.isDictionary()) return true;
  for (const auto& [key, value] : options.dictionaryItems()) {
    const bool allowedKey =
        key == kAPNSSandboxKey || (!config.allowMSGRegistrationWithoutAPNSToken && key == kAPNSTokenKey);
    if (!allowedKey || !(value.isString() || value.isNumber())) return false;
  }
  return true;
}

Value InstanceID::replaceAPNSDataWithString(const Value& options) {
  const Value& apnsToken = options[kAPNSTokenKey];
  if (!apnsToken.isBytes()) return options;
  std::string text = options[kAPNSSandboxKey].boolValue() ? "s_" : "p_";
  text += platform::hexString(apnsToken.bytesData());
  Value converted = options;
  converted.set(kAPNSTokenKey, Value(text));
  return converted;
}

// Requests ---------------------------------------------------------------

void InstanceID::tokenWithAuthorizedEntity(const std::string& authorizedEntity, const std::string& scope,
                                           const Value& options, TokenHandler handler) {
  if (!handler) {
    iidLogError("Invalid nil handler.");
    return;
  }
  std::optional<int64_t> code;
  if (InstanceIDTokenManager::isMessagingScope(scope) && !allowsMissingAPNSToken()) {
    const Value& apnsToken = options[kAPNSTokenKey];
    if (apnsToken.isNil()) {
      code = InstanceIDErrorCodeMissingAPNSToken;
    } else if (options[kAPNSSandboxKey].isNil()) {
      code = InstanceIDErrorCodeMissingAPNSServerType;
    } else if (!apnsToken.isBytes()) {
      code = InstanceIDErrorCodeUnknown;
    }
  }
  if (!code && authorizedEntity.empty()) code = InstanceIDErrorCodeInvalidEntity;
  if (!code && scope.empty()) code = InstanceIDErrorCodeInvalidScope;
  if (!code && !keyPairStore_) code = InstanceIDErrorCodeMissingKeyPairStore;
  if (code) {
    asyncInvokeGetTokenHandler(std::move(handler), std::nullopt, errorWithInstanceIDErrorCode(*code));
    return;
  }

  const Value converted = replaceAPNSDataWithString(options);
  if (!verifyNewTokenOptions(converted, *config_)) {
    iidLogError(platform::format("Invalid options specified in request with entity %@, scope %@",
                                 {Value(authorizedEntity), Value(scope)}));
  }
  // Whatever queue an answer comes from, the caller hears it on the main queue.
  TokenHandler answer = [handler = std::move(handler)](const std::optional<std::string>& token,
                                                       const std::optional<Error>& error) {
    asyncInvokeGetTokenHandler(handler, token, error);
  };
  fetchCheckinInfoWithHandler(
      [self = shared_from_this(), authorizedEntity, scope, options = dictionaryOf(converted), answer](
          std::shared_ptr<InstanceIDCheckinPreferences>, const std::optional<Error>& error) {
        if (error) {
          answer(std::nullopt, error);
          return;
        }
        const InstanceIDCachedToken cachedToken =
            self->tokenManager_->tokenWithAuthorizedEntity(authorizedEntity, scope, options);
        if (cachedToken.isValid()) {
          answer(cachedToken.token, std::nullopt);
          return;
        }
        self->asyncLoadKeyPairWithHandler(
            [self, cachedToken, authorizedEntity, scope, options, answer](std::shared_ptr<InstanceIDKeyPair> keyPair,
                                                                          const std::optional<Error>& keyError) {
              if (keyError || !keyPair) {
                answer(std::nullopt, errorWithInstanceIDErrorCode(InstanceIDErrorCodeKeyPairFailure));
                return;
              }
              if (cachedToken.shouldInvalidateAllTokens) {
                self->tokenManager_->invalidateCachedToken(cachedToken, authorizedEntity, scope, options);
              }
              self->tokenManager_->fetchNewTokenWithAuthorizedEntity(authorizedEntity, scope, keyPair, options, answer);
            });
      });
}

void InstanceID::deleteTokenWithAuthorizedEntity(const std::string& authorizedEntity, const std::string& scope,
                                                 DeleteHandler handler) {
  if (!handler) {
    iidLogError("Invalid nil handler.");
    return;
  }
  std::optional<int64_t> code;
  if (authorizedEntity.empty()) {
    code = InstanceIDErrorCodeInvalidEntity;
  } else if (scope.empty()) {
    code = InstanceIDErrorCodeInvalidScope;
  } else if (!keyPairStore_) {
    code = InstanceIDErrorCodeMissingKeyPairStore;
  }
  if (code) {
    asyncInvokeDeleteTokenHandler(std::move(handler), errorWithInstanceIDErrorCode(*code));
    return;
  }
  DeleteHandler answer = [handler = std::move(handler)](const std::optional<Error>& error) {
    asyncInvokeDeleteTokenHandler(handler, error);
  };
  fetchCheckinInfoWithHandler([self = shared_from_this(), authorizedEntity, scope, answer](
                                  std::shared_ptr<InstanceIDCheckinPreferences>, const std::optional<Error>& error) {
    if (error) {
      answer(error);
      return;
    }
    self->asyncLoadKeyPairWithHandler(
        [self, authorizedEntity, scope, answer](std::shared_ptr<InstanceIDKeyPair> keyPair,
                                                const std::optional<Error>& keyError) {
          if (keyError || !keyPair) {
            answer(errorWithInstanceIDErrorCode(InstanceIDErrorCodeKeyPairFailure));
            return;
          }
          self->tokenManager_->deleteTokenWithAuthorizedEntity(authorizedEntity, scope, keyPair, answer);
        });
  });
}

void InstanceID::getIDWithHandler(IDHandler handler) {
  if (!handler) {
    iidLogError("Invalid nil handler.");
    return;
  }
  if (!keyPairStore_) {
    asyncInvokeGetIDHandler(std::move(handler), std::nullopt,
                            errorWithInstanceIDErrorCode(InstanceIDErrorCodeMissingKeyPairStore));
    return;
  }
  DispatchQueue::global()->async([store = keyPairStore_, handler = std::move(handler)] {
    Error error;
    const std::optional<std::string> identity = store->appIdentityWithError(&error);
    asyncInvokeGetIDHandler(handler, identity, errorIfSet(error));
  });
}

void InstanceID::deleteIDWithHandler(DeleteHandler handler) {
  if (!handler) {
    iidLogError("Invalid nil handler.");
    return;
  }
  if (!keyPairStore_) {
    asyncInvokeDeleteIDHandler(std::move(handler),
                               errorWithInstanceIDErrorCode(InstanceIDErrorCodeMissingKeyPairStore));
    return;
  }
  asyncLoadKeyPairWithHandler([self = shared_from_this(), handler = std::move(handler)](
                                  std::shared_ptr<InstanceIDKeyPair> keyPair, const std::optional<Error>& keyError) {
    if (keyError || !keyPair) {
      asyncInvokeDeleteIDHandler(handler, errorWithInstanceIDErrorCode(InstanceIDErrorCodeKeyPairFailure));
      return;
    }
    self->tokenManager_->deleteAllTokensWithKeyPair(
        keyPair, [store = self->keyPairStore_, handler](const std::optional<Error>& error) {
          if (error) {
            asyncInvokeDeleteIDHandler(handler, error);
            return;
          }
          Error keyPairError;
          const bool keysDeleted = store->deleteSavedKeyPairWithSubtype("", &keyPairError);
          Error plistError;
          const bool plistDeleted = store->removeKeyPairCreationTimePlistWithError(&plistError);
          std::optional<Error> result;
          if (!keysDeleted || !plistDeleted || errorIfSet(keyPairError) || errorIfSet(plistError)) {
            result = errorWithInstanceIDErrorCode(InstanceIDErrorCodeInvalidResponse);
          }
          asyncInvokeDeleteIDHandler(handler, result);
        });
  });
}

void InstanceID::stopAllRequests() {
  if (tokenManager_) tokenManager_->registrar()->stopAllRequests();
}

// Check-in and keys --------------------------------------------------------

void InstanceID::fetchCheckinInfoWithHandler(CheckinHandler handler) {
  std::shared_ptr<InstanceIDAuthService> authService = tokenManager_->authService();
  if (authService->hasValidCheckinInfo()) {
    DispatchQueue::main()->async([handler = std::move(handler), preferences = authService->checkinPreferences()] {
      handler(preferences, std::nullopt);
    });
    return;
  }
  authService->fetchCheckinInfoWithHandler(
      [authService, handler = std::move(handler)](std::shared_ptr<InstanceIDCheckinPreferences> preferences,
                                                  std::optional<Error> error) {
        if (error && error->domain == kInstanceIDErrorDomain && error->code == InstanceIDErrorCodeInProgress) {
          // Another check-in is running: look again once it has had time to finish.
          DispatchQueue::main()->after(waitIntervalForCheckinRefresh(), [authService, handler] {
            if (authService->hasValidCheckinInfo()) {
              handler(authService->checkinPreferences(), std::nullopt);
            } else {
              handler(nullptr, errorWithInstanceIDErrorCode(InstanceIDErrorCodeNoValidCheckin));
            }
          });
          return;
        }
        DispatchQueue::main()->async([handler, preferences, error] { handler(preferences, error); });
      });
}

void InstanceID::asyncLoadKeyPairWithHandler(KeyPairHandler handler) {
  DispatchQueue::global()->async([store = keyPairStore_, handler = std::move(handler)] {
    Error error;
    std::shared_ptr<InstanceIDKeyPair> keyPair = store->loadKeyPairWithError(&error);
    DispatchQueue::main()->async([handler, keyPair, error = errorIfSet(error)] { handler(keyPair, error); });
  });
}

// Commands ---------------------------------------------------------------

void InstanceID::notifyTokenRefresh() { handleTokenRefreshWithDelayInSeconds(kCommandDelaySeconds); }

void InstanceID::notifyIdentityLost() { handleCommandResetWithDelayInSeconds(kCommandDelaySeconds); }

void InstanceID::didReceiveMSGMessage(const platform::Notification& notification) {
  const Value& message = notification.userInfo;
  if (!message.isDictionary()) {
    iidLogError(platform::format("Invalid MSG message with object %@", {Value(typeName(message))}));
    return;
  }
  const std::string command = textOf(message["CMD"]);
  const std::string subtype = textOf(message["subtype"]);
  if (command.empty()) {
    iidLogError("Invalid nil command to InstanceID");
    return;
  }
  handleRefreshMessage(command, subtype);
}

void InstanceID::handleRefreshMessage(const std::string& command, const std::string&) {
  if (command == "RST") {
    handleCommandResetWithDelayInSeconds(0);
  } else if (command == "RST_FULL") {
    handleCommandResetFullWithDelayInSeconds(0);
  } else if (command == "SYNC") {
    handleTokenRefreshWithDelayInSeconds(0);
  }
}

void InstanceID::handleTokenRefreshWithDelayInSeconds(double delaySeconds) {
  if (tokenManager_) tokenManager_->deleteAllTokensLocallyWithError(nullptr);
  invokeTokenRefreshCallbackWithDelayInSeconds(delaySeconds);
}

void InstanceID::handleCommandResetWithDelayInSeconds(double delaySeconds) {
  if (keyPairStore_) keyPairStore_->deleteSavedKeyPairWithSubtype("", nullptr);
  if (tokenManager_) tokenManager_->deleteAllTokensLocallyWithError(nullptr);
  invokeTokenRefreshCallbackWithDelayInSeconds(delaySeconds);
}

void InstanceID::handleCommandResetFullWithDelayInSeconds(double delaySeconds) {
  const bool hadKeyPair = keyPairStore_ && keyPairStore_->hasCachedKeyPairs();
  if (hadKeyPair) keyPairStore_->deleteSavedKeyPairWithSubtype("", nullptr);
  Error error;
  const bool deleted = tokenManager_ && tokenManager_->deleteAllTokensLocallyWithError(&error);
  const bool hasError = !error.ok();
  bool invoke;
  if (!deleted && hasError) {
    invoke = hadKeyPair;
  } else {
    // Nothing to reset: no pair, and the token store reported no item.
    invoke = hadKeyPair || (hasError ? error.code : 0) != platform::Keychain::statusItemNotFound;
  }
  if (invoke) invokeTokenRefreshCallbackWithDelayInSeconds(delaySeconds);
}

void InstanceID::invokeTokenRefreshCallbackWithDelayInSeconds(double delaySeconds) {
  auto callback = [weak = weak_from_this()] {
    auto self = weak.lock();
    if (!self) return;
    if (auto delegate = self->refreshTokenDelegate_.lock()) delegate->onTokenRefresh();
  };
  if (delaySeconds == 0) {
    DispatchQueue::main()->async(std::move(callback));
  } else {
    DispatchQueue::main()->after(delaySeconds, std::move(callback));
  }
}

}  // namespace quillet::instanceid
