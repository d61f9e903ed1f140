#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "instanceid/support/InstanceIDEnvironment.h"
#include "platform/dispatch/DispatchQueue.h"
#include "platform/net/HttpCallbacks.h"
#include "platform/net/HttpRequest.h"
#include "platform/net/HttpSession.h"
#include "platform/value/Error.h"
#include "platform/value/Value.h"

namespace quillet::instanceid {

class InstanceIDAuthService;
class InstanceIDKeyPair;

// A fetch answers (token or null, error or null); a delete (error or null).
using InstanceIDTokenHandler =
    std::function<void(const std::optional<std::string>& token, const std::optional<platform::Error>& error)>;
using InstanceIDDeleteHandler = std::function<void(const std::optional<platform::Error>& error)>;

// Fetches and deletes the token of one (authorized entity, scope) with a form
// POST to the registration endpoint, authorised by the device credential and
// signed with the instance's key pair. One request at a time; a client keeps
// its session between requests.
//
// Requests start on the main queue. Their completions run on the client's
// own serial queue: error handlers are called there, a token handler is moved
// to the main queue (parseToken). Created and owned by InstanceIDRegistrar
// as a std::shared_ptr; completions hold the client weakly.
class InstanceIDRegistrationClient : public std::enable_shared_from_this<InstanceIDRegistrationClient> {
 public:
  // A replacement transport for tests: it gets the built request and answers
  // through the completion (any thread, once) with the status, the header
  // fields, the body, or an error.
  using RegistrationTestCompletion =
      std::function<void(int statusCode, const platform::HttpHeaders& headers, const std::string& body,
                         const std::optional<platform::Error>& error)>;
  using RegistrationTestBlock =
      std::function<void(const platform::HttpRequest& request, RegistrationTestCompletion completion)>;

  // `authService` and `keyPair` are shared with the registrar's owner.
  InstanceIDRegistrationClient(std::shared_ptr<InstanceIDAuthService> authService, std::string authorizedEntity,
                               std::string scope, std::shared_ptr<InstanceIDKeyPair> keyPair,
                               std::shared_ptr<const InstanceIDEnvironment> env);
  ~InstanceIDRegistrationClient();
  InstanceIDRegistrationClient(const InstanceIDRegistrationClient&) = delete;
  InstanceIDRegistrationClient& operator=(const InstanceIDRegistrationClient&) = delete;

  const std::string& authorizedEntity() const { return authorizedEntity_; }
  const std::string& scope() const { return scope_; }
  const platform::Value::Dictionary& options() const { return options_; }
  // The serial queue on which this client's completions run.
  const std::shared_ptr<platform::DispatchQueue>& sessionQueue() const { return queue_; }
  // Keeps a copy of the options of the next fetch.
  void setOptionsForFetchingNewToken(const platform::Value::Dictionary& options) { options_ = options; }

  // A request of this client is running.
  bool inProgress() const;
  // Error 6 at once without device ID or secret; otherwise one request.
  void fetchTokenWithHandler(InstanceIDTokenHandler handler);
  void deleteTokenWithHandler(InstanceIDDeleteHandler handler);
  // Cancels the running request (its handler gets the cancellation) and
  // drops the session; the next request makes a new one.
  void stopFetching();

  // Same class, entity and scope.
  bool operator==(const InstanceIDRegistrationClient& other) const;
  size_t hash() const;

  // The body with "&appid=..&pub2=..&sig=.." appended (pub2 keeps its CR LF).
  std::string addPublicKeyContentToRequestBody(const std::string& body) const;
  // "DeviceLogin <the entity's auth token, else device ID:secret>".
  std::string HTTPAuthHeaderForAuthorizedEntity(const std::string& authorizedEntity) const;

  // The token cache key "|T|<entity>|<scope>".
  static std::string registrationClientKeyWithAuthorizedEntity(const std::string& authorizedEntity,
                                                               const std::string& scope);
  // A session whose requests may take 60 seconds in all.
  static std::shared_ptr<platform::HttpSession> newSession(const InstanceIDEnvironment& env);
  // 1, 2, 3, ... for the life of the process. Thread-safe.
  static uint64_t nextRequestID();
  // A POST to the registration endpoint with "Authorization" and "app".
  static platform::HttpRequest requestWithAuthHeader(const std::string& authHeader, const InstanceIDEnvironment& env);
  // The header fields of an answer.
  static const platform::HttpHeaders& responseHeadersForResponse(const platform::HttpResponse& response);
  // The completion of a delete: transport error as is, a body beginning
  // "deleted=" is success, anything else error 7.
  static platform::HttpCompletion updateDeleteHandler(InstanceIDDeleteHandler handler);
  // Best effort on a reinstall: asks the server to forget the "MSG" token of
  // the earlier install's credential, on a session of its own. Error 6 when
  // either argument is empty. Any thread.
  static void deleteMSGTokenOnAppResetWithDeviceID(const std::string& deviceID, const std::string& secretToken,
                                                   std::shared_ptr<const InstanceIDEnvironment> env,
                                                   InstanceIDDeleteHandler handler);
  // Installs (or, with an empty block, removes) the process-wide replacement transport.
  static void setRegistrationTestBlock(RegistrationTestBlock block);
  // Reads a "token" value (see InstanceIDRegistrationContent), passes its
  // command to InstanceIDCommandHandler, keeps a new auth token of the
  // entity through `authService` (may be null), and calls `handler` with the
  // token and no error; all on the main queue.
  static void parseToken(const std::string& tokenText, const std::string& authToken, uint64_t requestID,
                         const std::string& authorizedEntity, std::shared_ptr<InstanceIDAuthService> authService,
                         InstanceIDTokenHandler handler);

  // The process-wide count of retries after "PHONE_REGISTRATION_ERROR"
  // (at most 3 in a process's life); tests put it back to 0.
  static int32_t phoneRegistrationRetryCount();
  static void resetPhoneRegistrationRetryCount();

 private:
  struct FetchContext;
  static void handleFetchResponse(const FetchContext& context, const std::optional<platform::HttpResponse>& response,
                                  const std::optional<platform::Error>& error);
  // Sends through the test block when one is set, else on `session`; the
  // completion runs on `queue`. Null when nothing was started on a session.
  static std::shared_ptr<platform::HttpTask> send(platform::HttpRequest request,
                                                  std::shared_ptr<platform::DispatchQueue> queue,
                                                  platform::HttpSession* session, platform::HttpCompletion completion);
  void start(platform::HttpRequest request, platform::HttpCompletion completion);

  std::shared_ptr<InstanceIDAuthService> authService_;
  std::string authorizedEntity_;
  std::string scope_;
  std::shared_ptr<InstanceIDKeyPair> keyPair_;
  std::shared_ptr<const InstanceIDEnvironment> env_;
  platform::Value::Dictionary options_;
  std::shared_ptr<platform::DispatchQueue> queue_;  // where completions run
  std::shared_ptr<platform::HttpSession> session_;  // made on first use
  std::shared_ptr<platform::HttpTask> task_;        // the running request, when on a session
  std::shared_ptr<std::atomic<bool>> running_;      // cleared when the running request completes
};

}  // namespace quillet::instanceid
