#include "instanceid/registration/InstanceIDRegistrationClient.h"

#include <algorithm>
#include <mutex>
#include <vector>

#include "instanceid/checkin/InstanceIDAuthService.h"
#include "instanceid/keypair/InstanceIDKeyPair.h"
#include "instanceid/keypair/InstanceIDKeyPairUtilities.h"
#include "instanceid/registration/InstanceIDCommandHandler.h"
#include "instanceid/registration/InstanceIDRegistrationContent.h"
#include "instanceid/store/InstanceIDCheckinPreferences.h"
#include "instanceid/store/InstanceIDTokenStore.h"
#include "instanceid/support/InstanceIDError.h"
#include "instanceid/support/InstanceIDLogger.h"
#include "platform/value/Format.h"

namespace quillet::instanceid {

using platform::Error;
using platform::HttpResponse;
using platform::Value;

namespace {

constexpr const char* kSessionQueueLabel = "com.stikri.iid.registration";
constexpr double kResourceTimeoutSeconds = 60.0;
constexpr double kPhoneRegistrationRetryDelaySeconds = 30.0;
constexpr int32_t kMaxPhoneRegistrationRetries = 3;

std::mutex& requestIDMutex() {
  static auto* mutex = new std::mutex();
  return *mutex;
}

uint64_t& lastRequestID() {
  static auto* requestID = new uint64_t(0);
  return *requestID;
}

// Shared by all clients, so that the process makes at most 3 such retries.
std::atomic<int32_t>& retryCount() {
  static auto* count = new std::atomic<int32_t>(0);
  return *count;
}

struct TestBlockHolder {
  std::mutex mutex;
  InstanceIDRegistrationClient::RegistrationTestBlock block;
};

TestBlockHolder& testBlockHolder() {
  // Never destroyed: session queues may read it while the process exits.
  static auto* holder = new TestBlockHolder();
  return *holder;
}

InstanceIDRegistrationClient::RegistrationTestBlock currentTestBlock() {
  std::lock_guard lock(testBlockHolder().mutex);
  return testBlockHolder().block;
}

}  // namespace

struct InstanceIDRegistrationClient::FetchContext {
  std::weak_ptr<InstanceIDRegistrationClient> client;
  std::shared_ptr<InstanceIDAuthService> authService;
  std::string authorizedEntity;
  uint64_t requestID = 0;
  InstanceIDTokenHandler handler;
};

InstanceIDRegistrationClient::InstanceIDRegistrationClient(std::shared_ptr<InstanceIDAuthService> authService,
                                                           std::string authorizedEntity, std::string scope,
                                                           std::shared_ptr<InstanceIDKeyPair> keyPair,
                                                           std::shared_ptr<const InstanceIDEnvironment> env)
    : authService_(std::move(authService)),
      authorizedEntity_(std::move(authorizedEntity)),
      scope_(std::move(scope)),
      keyPair_(std::move(keyPair)),
      env_(std::move(env)),
      queue_(platform::DispatchQueue::makeSerial(kSessionQueueLabel)) {}

InstanceIDRegistrationClient::~InstanceIDRegistrationClient() {
  if (session_) session_->invalidateAndCancel();
}

bool InstanceIDRegistrationClient::inProgress() const { return running_ && running_->load(); }

bool InstanceIDRegistrationClient::operator==(const InstanceIDRegistrationClient& other) const {
  return authorizedEntity_ == other.authorizedEntity_ && scope_ == other.scope_;
}

size_t InstanceIDRegistrationClient::hash() const {
  return std::hash<std::string>()(registrationClientKeyWithAuthorizedEntity(authorizedEntity_, scope_));
}

std::string InstanceIDRegistrationClient::registrationClientKeyWithAuthorizedEntity(const std::string& authorizedEntity,
                                                                                    const std::string& scope) {
  return InstanceIDTokenStore::cacheKeyForAuthorizedEntity(authorizedEntity, scope);
}

std::shared_ptr<platform::HttpSession> InstanceIDRegistrationClient::newSession(const InstanceIDEnvironment& env) {
  platform::HttpSessionOptions options = env.sessionOptions;
  options.resourceTimeoutSeconds = kResourceTimeoutSeconds;
  return std::make_shared<platform::HttpSession>(options);
}

uint64_t InstanceIDRegistrationClient::nextRequestID() {
  std::lock_guard lock(requestIDMutex());
  return ++lastRequestID();
}

platform::HttpRequest InstanceIDRegistrationClient::requestWithAuthHeader(const std::string& authHeader,
                                                                          const InstanceIDEnvironment& env) {
  platform::HttpRequest request(env.registrationURL, "POST");
  request.headers.add("Authorization", authHeader);
  request.headers.add("app", env.bundleIdentifier);
  return request;
}

const platform::HttpHeaders& InstanceIDRegistrationClient::responseHeadersForResponse(const HttpResponse& response) {
  return response.headers;
}

int32_t InstanceIDRegistrationClient::phoneRegistrationRetryCount() { return retryCount().load(); }

void InstanceIDRegistrationClient::resetPhoneRegistrationRetryCount() { retryCount() = 0; }

void InstanceIDRegistrationClient::setRegistrationTestBlock(RegistrationTestBlock block) {
  std::lock_guard lock(testBlockHolder().mutex);
  testBlockHolder().block = std::move(block);
}

std::string InstanceIDRegistrationClient::HTTPAuthHeaderForAuthorizedEntity(const std::string& authorizedEntity) const {
  const std::optional<std::string> cached = authService_->cachedIIDAuthTokenForAuthorizedEntity(authorizedEntity);
  const std::string token = cached && !cached->empty() ? *cached : authService_->checkinAuthToken();
  return platform::format("DeviceLogin %@", {Value(token)});
}

std::string InstanceIDRegistrationClient::addPublicKeyContentToRequestBody(const std::string& body) const {
  std::string pub2;
  std::optional<std::string> signature;
  std::optional<std::string> appID;
  if (keyPair_) {
    pub2 = InstanceIDPlainBase64WithLineBreaks(keyPair_->publicKeyData());
    if (keyPair_->privateKey()) {
      signature = InstanceIDSignParams(*keyPair_->privateKey(), InstanceIDJoinedText(env_->bundleIdentifier, {pub2}));
    }
    appID = InstanceIDKeyPair::appIdentityWithKeyPair(*keyPair_);
  }
  return body + InstanceIDRegistrationContent::publicKeyContent(appID, pub2, signature);
}

std::shared_ptr<platform::HttpTask> InstanceIDRegistrationClient::send(platform::HttpRequest request,
                                                                       std::shared_ptr<platform::DispatchQueue> queue,
                                                                       platform::HttpSession* session,
                                                                       platform::HttpCompletion completion) {
  if (RegistrationTestBlock block = currentTestBlock()) {
    auto shared = std::make_shared<platform::HttpCompletion>(std::move(completion));
    block(request, [queue, shared](int statusCode, const platform::HttpHeaders& headers, const std::string& body,
                                   const std::optional<Error>& error) {
      std::optional<HttpResponse> response;
      if (!error) {
        response.emplace();
        response->statusCode = statusCode;
        response->headers = headers;
        response->body.assign(body.begin(), body.end());
      }
      queue->async([shared, response, error] { (*shared)(response, error); });
    });
    return nullptr;
  }
  return session->start(std::move(request), std::move(queue), std::move(completion));
}

void InstanceIDRegistrationClient::start(platform::HttpRequest request, platform::HttpCompletion completion) {
  auto running = std::make_shared<std::atomic<bool>>(true);
  running_ = running;
  if (!session_ && !currentTestBlock()) session_ = newSession(*env_);
  task_ = send(
      std::move(request), queue_, session_.get(),
      [running, completion = std::move(completion)](std::optional<HttpResponse> response, std::optional<Error> error) {
        running->store(false);
        completion(std::move(response), std::move(error));
      });
}

void InstanceIDRegistrationClient::stopFetching() {
  if (session_) session_->invalidateAndCancel();
  session_.reset();
  task_.reset();
}

void InstanceIDRegistrationClient::fetchTokenWithHandler(InstanceIDTokenHandler handler) {
  const auto preferences = authService_->checkinPreferences();
  const std::string deviceID = preferences ? preferences->deviceID() : std::string();
  const std::string secret = preferences ? preferences->secretToken() : std::string();
  if (deviceID.empty() || secret.empty()) {
    if (handler) handler(std::nullopt, errorWithInstanceIDErrorCode(InstanceIDErrorCodeMissingCredential));
    return;
  }
  platform::HttpRequest request = requestWithAuthHeader(HTTPAuthHeaderForAuthorizedEntity(authorizedEntity_), *env_);
  request.headers.add("info", preferences->versionInfo());
  const uint64_t requestID = nextRequestID();
  std::string body =
      InstanceIDRegistrationContent::fetchRequestContent(authorizedEntity_, scope_, deviceID, *env_, requestID);
  body = addPublicKeyContentToRequestBody(body);
  body += InstanceIDRegistrationContent::requestContentSuffixFromOptions(options_);
  request.setBody(body);

  FetchContext context{weak_from_this(), authService_, authorizedEntity_, requestID, std::move(handler)};
  start(std::move(request),
        [context = std::move(context)](std::optional<HttpResponse> response, std::optional<Error> error) {
          handleFetchResponse(context, response, error);
        });
}

void InstanceIDRegistrationClient::handleFetchResponse(const FetchContext& context,
                                                       const std::optional<HttpResponse>& response,
                                                       const std::optional<Error>& error) {
  const auto answer = [&context](const std::optional<std::string>& token, const std::optional<Error>& failure) {
    if (context.handler) context.handler(token, failure);
  };
  if (error) {
    answer(std::nullopt, error);
    return;
  }
  const std::string body = response ? response->bodyString() : std::string();
  if (body.empty()) {
    answer(std::nullopt, errorWithInstanceIDErrorCode(InstanceIDErrorCodeInvalidResponse));
    return;
  }
  const std::map<std::string, std::string> parsed = InstanceIDRegistrationContent::parseFetchTokenResponse(body);
  const auto token = parsed.find("token");
  if (token != parsed.end() && !token->second.empty()) {
    const std::string authToken = responseHeadersForResponse(*response).value("X-iid-auth").value_or("");
    parseToken(token->second, authToken, context.requestID, context.authorizedEntity, context.authService,
               context.handler);
    return;
  }
  const auto reasons = parsed.find("Error");
  if (reasons != parsed.end() && !reasons->second.empty()) {
    const std::vector<std::string> words =
        InstanceIDRegistrationContent::componentsSeparatedByString(reasons->second, ":");
    const bool phoneRegistrationError =
        std::find(words.begin(), words.end(), "PHONE_REGISTRATION_ERROR") != words.end();
    if (phoneRegistrationError && retryCount().load() < kMaxPhoneRegistrationRetries) {
      platform::DispatchQueue::main()->after(kPhoneRegistrationRetryDelaySeconds,
                                             [client = context.client, handler = context.handler] {
                                               auto strong = client.lock();
                                               if (!strong) return;
                                               ++retryCount();
                                               strong->fetchTokenWithHandler(handler);
                                             });
      return;
    }
  }
  answer(std::nullopt, errorWithInstanceIDErrorCode(InstanceIDErrorCodeInvalidResponse));
}

void InstanceIDRegistrationClient::parseToken(const std::string& tokenText, const std::string& authToken,
                                              uint64_t requestID, const std::string& authorizedEntity,
                                              std::shared_ptr<InstanceIDAuthService> authService,
                                              InstanceIDTokenHandler handler) {
  const InstanceIDRegistrationContent::TokenText parsed =
      InstanceIDRegistrationContent::tokenFromTokenText(tokenText, requestID);
  // Everything below runs on the main queue, in this order: the command
  // first, so that a token that arrives with "SYNC" is saved after the
  // local tokens are dropped.
  platform::DispatchQueue::main()->async(
      [parsed, authToken, authorizedEntity, authService = std::move(authService), handler = std::move(handler)] {
        if (parsed.token) {
          if (parsed.command == "SYNC") {
            if (auto commands = InstanceIDCommandHandler::shared()) commands->notifyTokenRefresh();
          } else if (parsed.command == "RST") {
            if (auto commands = InstanceIDCommandHandler::shared()) commands->notifyIdentityLost();
          }
        }
        if (parsed.token && !parsed.token->empty() && !authToken.empty() && authService) {
          authService->saveIIDAuthToken(authToken, authorizedEntity);
        }
        if (handler) handler(parsed.token, std::nullopt);
      });
}

platform::HttpCompletion InstanceIDRegistrationClient::updateDeleteHandler(InstanceIDDeleteHandler handler) {
  return [handler = std::move(handler)](std::optional<HttpResponse> response, std::optional<Error> error) {
    if (!handler) return;
    if (error) {
      handler(error);
      return;
    }
    const std::string body = response ? response->bodyString() : std::string();
    if (!body.empty() && body.starts_with("deleted=")) {
      handler(std::nullopt);
      return;
    }
    handler(errorWithInstanceIDErrorCode(InstanceIDErrorCodeInvalidResponse));
  };
}

void InstanceIDRegistrationClient::deleteTokenWithHandler(InstanceIDDeleteHandler handler) {
  const auto preferences = authService_->checkinPreferences();
  const std::string deviceID = preferences ? preferences->deviceID() : std::string();
  const std::string secret = preferences ? preferences->secretToken() : std::string();
  if (deviceID.empty() || secret.empty()) {
    if (handler) handler(errorWithInstanceIDErrorCode(InstanceIDErrorCodeMissingCredential));
    return;
  }
  platform::HttpRequest request = requestWithAuthHeader(HTTPAuthHeaderForAuthorizedEntity(authorizedEntity_), *env_);
  const std::string body =
      InstanceIDRegistrationContent::deleteRequestContentWithDeviceID(deviceID, scope_, *env_, nextRequestID());
  request.setBody(addPublicKeyContentToRequestBody(body));
  start(std::move(request), updateDeleteHandler(std::move(handler)));
}

void InstanceIDRegistrationClient::deleteMSGTokenOnAppResetWithDeviceID(
    const std::string& deviceID, const std::string& secretToken, std::shared_ptr<const InstanceIDEnvironment> env,
    InstanceIDDeleteHandler handler) {
  if (deviceID.empty() || secretToken.empty()) {
    if (handler) handler(errorWithInstanceIDErrorCode(InstanceIDErrorCodeMissingCredential));
    return;
  }
  platform::HttpRequest request =
      requestWithAuthHeader(platform::format("DeviceLogin %@:%@", {Value(deviceID), Value(secretToken)}), *env);
  // The keys of the earlier install are gone: no public key part.
  request.setBody(
      InstanceIDRegistrationContent::deleteRequestContentWithDeviceID(deviceID, "MSG", *env, nextRequestID()));
  auto queue = platform::DispatchQueue::makeSerial(kSessionQueueLabel);
  // The session lives until its one answer has come; it is let go there.
  auto session = std::make_shared<std::shared_ptr<platform::HttpSession>>();
  if (!currentTestBlock()) *session = newSession(*env);
  platform::HttpCompletion completion = updateDeleteHandler(std::move(handler));
  send(std::move(request), queue, session->get(),
       [session, completion = std::move(completion)](std::optional<HttpResponse> response, std::optional<Error> error) {
         completion(std::move(response), std::move(error));
         session->reset();
       });
}

}  // namespace quillet::instanceid
