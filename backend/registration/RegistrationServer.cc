#include "backend/registration/RegistrationServer.h"

#include <nlohmann/json.hpp>

#include <mutex>
#include <optional>

#include "backend/authority/BackendHttpsServer.h"
#include "backend/registration/RegistrationKeyProof.h"
#include "backend/registration/RegistrationRequest.h"
#include "platform/log/Log.h"

namespace quillet::backend {
namespace {

constexpr const char* kTextType = "text/plain";
constexpr const char* kJsonType = "application/json";
constexpr const char* kAuthenticationFailed = "AUTHENTICATION_FAILED";
constexpr const char* kInvalidParameters = "INVALID_PARAMETERS";

// Who the "Authorization" header says is asking.
struct Credential {
  std::string device;
  std::optional<std::string> sender;  // set when an auth token was shown: the sender it was issued for
};

}  // namespace

struct RegistrationServer::Impl {
  explicit Impl(RegistrationServerOptions o)
      : options(std::move(o)),
        devices(options.devices ? options.devices : std::make_shared<CheckinDeviceRegistry>()),
        clock(options.clock ? options.clock : platform::Clock::system()),
        https("registration server", options.certificateFile, options.keyFile) {}

  void answerRegister(const httplib::Request& request, httplib::Response& response);
  void answerSwitches(const httplib::Request& request, httplib::Response& response);
  void answerTokens(const httplib::Request& request, httplib::Response& response) const;
  std::optional<Credential> credentialOf(const std::string& authorization) const;
  // Why an authorised request must be refused ("" when it passes): the reason word, and the detail.
  std::string refusal(const httplib::Request& request, const Credential& credential, const RegistrationRequest& form,
                      std::string* detail) const;
  // Uses up one answer of the first switch of that kind, if one is on.
  std::optional<RegistrationSwitch> takeSwitch(RegistrationSwitch::Kind kind);

  RegistrationServerOptions options;
  std::shared_ptr<CheckinDeviceRegistry> devices;
  std::shared_ptr<platform::Clock> clock;
  BackendHttpsServer https;
  BackendRequestLog log;
  RegistrationTokenBook book;
  std::mutex mutex;  // guards switches
  std::vector<RegistrationSwitch> switches;
};

std::optional<RegistrationSwitch> RegistrationServer::Impl::takeSwitch(RegistrationSwitch::Kind kind) {
  std::lock_guard lock(mutex);
  for (auto it = switches.begin(); it != switches.end(); ++it) {
    if (it->kind != kind) continue;
    RegistrationSwitch found = *it;
    if (it->count > 0 && --it->count == 0) switches.erase(it);
    return found;
  }
  return std::nullopt;
}

std::optional<Credential> RegistrationServer::Impl::credentialOf(const std::string& authorization) const {
  static constexpr std::string_view kScheme = "DeviceLogin ";
  if (authorization.rfind(kScheme, 0) != 0) return std::nullopt;
  const std::string value = authorization.substr(kScheme.size());
  const size_t colon = value.find(':');
  if (colon != std::string::npos) {
    const std::string device = value.substr(0, colon);
    if (!devices->checkCredentials(device, value.substr(colon + 1))) return std::nullopt;
    return Credential{device, std::nullopt};
  }
  auto owner = devices->authTokenOwner(value);
  if (!owner) return std::nullopt;
  return Credential{owner->first, owner->second};
}

std::string RegistrationServer::Impl::refusal(const httplib::Request& request, const Credential& credential,
                                              const RegistrationRequest& form, std::string* detail) const {
  auto refuse = [&](const char* word, std::string what) {
    *detail = std::move(what);
    return std::string(word);
  };
  if (request.get_header_value("app") != form.app) return refuse(kInvalidParameters, "header app differs from app");
  if (form.device != credential.device) return refuse(kInvalidParameters, "device differs from the credential");
  if (!form.isDelete && credential.sender && *credential.sender != form.sender) {
    return refuse(kAuthenticationFailed, "the auth token belongs to another sender");
  }
  if (!form.isDelete) {
    const auto device = devices->device(form.device);
    if (device && !device->versionInfo.empty() && request.get_header_value("info") != device->versionInfo) {
      return refuse(kInvalidParameters, "header info differs from the device's version_info");
    }
  }
  if (!form.hasKeyPart && form.scope != "MSG") {
    return refuse(kInvalidParameters, "a delete without appid, pub2 and sig must have scope MSG");
  }
  std::string why;
  if (form.hasKeyPart && !RegistrationKeyProof::verify(form.app, form.appId, form.pub2, form.sig, &why)) {
    return refuse(kInvalidParameters, why);
  }
  return {};
}

void RegistrationServer::Impl::answerRegister(const httplib::Request& request, httplib::Response& response) {
  BackendRequest record{request.method,
                        request.path,
                        {request.headers.begin(), request.headers.end()},
                        request.body,
                        clock->wallMilliseconds(),
                        0,
                        ""};
  auto finish = [&](int status, const std::string& body, std::string result) {
    record.status = status;
    record.result = std::move(result);
    log.record(record);
    response.status = status;
    response.set_content(body, kTextType);
  };
  auto refuse = [&](const std::string& word, const std::string& detail) {
    platform::Log::write("registration server: " + word + ": " + detail);
    finish(200, "Error=" + word + "\n", word + ": " + detail);
  };

  if (takeSwitch(RegistrationSwitch::Kind::Drop)) {
    record.result = "dropped (switch)";
    log.record(record);
    if (!BackendHttpsServer::dropConnection(request)) {
      platform::Log::write("registration server: cannot drop the connection");
    }
    return;
  }
  const auto credential = credentialOf(request.get_header_value("Authorization"));
  if (!credential) return refuse(kAuthenticationFailed, "unknown credential");
  std::string detail;
  const auto form = RegistrationRequest::parse(request.body, &detail);
  if (!form) return refuse(kInvalidParameters, detail);
  const std::string word = refusal(request, *credential, *form, &detail);
  if (!word.empty()) return refuse(word, detail);

  std::string body;
  std::string result;
  httplib::Headers headers;
  if (auto error = takeSwitch(RegistrationSwitch::Kind::Error)) {
    body = "Error=" + error->text + "\n";
    result = "Error=" + error->text + " (switch)";
  } else if (form->isDelete) {
    const size_t removed = book.remove(
        form->device, form->scope, form->hasKeyPart ? std::optional(form->appId) : std::nullopt, credential->sender);
    body = "deleted=" + form->scope + "\n";
    result = "deleted " + std::to_string(removed) + " token(s) of scope " + form->scope;
  } else {
    const std::string token = book.tokenFor(form->device, form->appId, form->sender, form->scope);
    std::string requestId = form->requestId;
    result = "token for " + form->sender + " scope " + form->scope;
    if (takeSwitch(RegistrationSwitch::Kind::WrongRequestId)) {
      requestId = std::to_string(std::stoull(requestId) + 1);
      result += "; wrong request id (switch)";
    }
    if (auto structured = takeSwitch(RegistrationSwitch::Kind::StructuredToken)) {
      body = "token=|ID|" + requestId + "|" + structured->text + "|:" + token + "\n";
      result += "; structured " + structured->text + " (switch)";
    } else {
      body = "token=" + requestId + ":" + token + "\n";
    }
    if (takeSwitch(RegistrationSwitch::Kind::AuthToken)) {
      response.set_header("X-iid-auth", devices->issueAuthToken(form->device, form->sender));
      result += "; X-iid-auth (switch)";
    }
  }
  int status = 200;
  if (takeSwitch(RegistrationSwitch::Kind::ServerError)) {
    status = 500;
    result += "; HTTP 500 (switch)";
  }
  if (takeSwitch(RegistrationSwitch::Kind::EmptyBody)) {
    body.clear();
    result += "; empty body (switch)";
  }
  finish(status, body, result);
}

void RegistrationServer::Impl::answerSwitches(const httplib::Request& request, httplib::Response& response) {
  const auto command = nlohmann::json::parse(request.body, nullptr, false);
  auto refuse = [&](const char* message) {
    response.status = 400;
    response.set_content(nlohmann::json{{"error", message}}.dump(), kJsonType);
  };
  if (!command.is_object()) return refuse("the body must be a JSON object");
  if (command.value("clear", false)) {
    std::lock_guard lock(mutex);
    switches.clear();
  } else {
    const auto kind = RegistrationSwitch::kindNamed(command.value("switch", std::string()));
    if (!kind) return refuse("unknown switch");
    const auto& count = command.contains("count") ? command["count"] : nlohmann::json(0);
    const auto& text = command.contains("text") ? command["text"] : nlohmann::json("");
    if (!count.is_number_unsigned() || !text.is_string()) return refuse("bad count or text");
    std::lock_guard lock(mutex);
    switches.push_back({*kind, text.get<std::string>(), count.get<int>()});
  }
  response.set_content("{}", kJsonType);
}

void RegistrationServer::Impl::answerTokens(const httplib::Request& request, httplib::Response& response) const {
  nlohmann::json list = nlohmann::json::array();
  for (const RegistrationToken& token : book.tokens(request.get_param_value("device"))) {
    list.push_back({{"device", token.device},
                    {"appid", token.appId},
                    {"sender", token.sender},
                    {"scope", token.scope},
                    {"token", token.token}});
  }
  response.set_content(list.dump(2), kJsonType);
}

RegistrationServer::RegistrationServer(RegistrationServerOptions options)
    : impl_(std::make_unique<Impl>(std::move(options))) {
  httplib::Server& http = impl_->https.server();
  http.Post("/iid/register", [this](const httplib::Request& q, httplib::Response& r) { impl_->answerRegister(q, r); });
  http.Get("/_admin/requests",
           [this](const httplib::Request&, httplib::Response& r) { r.set_content(impl_->log.json(), kJsonType); });
  http.Get("/_admin/tokens", [this](const httplib::Request& q, httplib::Response& r) { impl_->answerTokens(q, r); });
  http.Post("/_admin/switches",
            [this](const httplib::Request& q, httplib::Response& r) { impl_->answerSwitches(q, r); });
}

RegistrationServer::~RegistrationServer() { stop(); }

bool RegistrationServer::start(platform::Error* error) {
  return impl_->https.start(impl_->options.host, impl_->options.port, error);
}

void RegistrationServer::stop() { impl_->https.stop(); }

int RegistrationServer::port() const { return impl_->https.port(); }
std::string RegistrationServer::url() const { return impl_->https.baseUrl() + "/iid/register"; }

void RegistrationServer::addSwitch(RegistrationSwitch change) {
  std::lock_guard lock(impl_->mutex);
  impl_->switches.push_back(std::move(change));
}

void RegistrationServer::clearSwitches() {
  std::lock_guard lock(impl_->mutex);
  impl_->switches.clear();
}

std::vector<RegistrationToken> RegistrationServer::tokens(const std::string& device) const {
  return impl_->book.tokens(device);
}
std::vector<BackendRequest> RegistrationServer::requests() const { return impl_->log.requests(); }
const std::shared_ptr<CheckinDeviceRegistry>& RegistrationServer::devices() const { return impl_->devices; }

}  // namespace quillet::backend
