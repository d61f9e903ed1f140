#include "backend/registration/RegistrationRequest.h"

#include <algorithm>
#include <cctype>

namespace quillet::backend {
namespace {

bool isDecimal(const std::string& text) {
  return !text.empty() && text.size() <= 20 &&
         std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
}

// Walks the fields in order; the first failure is kept as the reason.
class FieldCursor {
 public:
  FieldCursor(std::vector<std::pair<std::string, std::string>> fields, std::string* reason)
      : fields_(std::move(fields)), reason_(reason) {}

  // The next field, which must be `name`.
  bool take(const char* name, std::string* value) {
    if (!ok_) return false;
    if (at_ >= fields_.size()) return fail(std::string("missing ") + name);
    if (fields_[at_].first != name) {
      return fail("expected " + std::string(name) + " at field " + std::to_string(at_ + 1) + ", found \"" +
                  fields_[at_].first + "\"");
    }
    *value = fields_[at_++].second;
    return true;
  }
  // The next field if it is `name`.
  bool maybe(const char* name, std::string* value) {
    return ok_ && at_ < fields_.size() && fields_[at_].first == name && take(name, value);
  }
  bool atEnd() {
    if (ok_ && at_ < fields_.size()) return fail("unexpected field \"" + fields_[at_].first + "\"");
    return ok_;
  }
  bool check(bool condition, const std::string& what) { return !ok_ ? false : condition || fail(what); }
  bool ok() const { return ok_; }

 private:
  bool fail(const std::string& what) {
    if (ok_ && reason_) *reason_ = what;
    ok_ = false;
    return false;
  }
  std::vector<std::pair<std::string, std::string>> fields_;
  std::string* reason_;
  size_t at_ = 0;
  bool ok_ = true;
};

}  // namespace

std::vector<std::pair<std::string, std::string>> RegistrationRequest::fields(const std::string& body) {
  std::vector<std::pair<std::string, std::string>> result;
  size_t start = 0;
  while (start <= body.size()) {
    size_t end = body.find('&', start);
    if (end == std::string::npos) end = body.size();
    const std::string field = body.substr(start, end - start);
    const size_t equals = field.find('=');
    if (equals == std::string::npos) {
      result.emplace_back(field, std::string());
    } else {
      result.emplace_back(field.substr(0, equals), field.substr(equals + 1));
    }
    start = end + 1;
  }
  return result;
}

std::optional<RegistrationRequest> RegistrationRequest::parse(const std::string& body, std::string* reason) {
  if (body.empty()) {
    if (reason) *reason = "empty body";
    return std::nullopt;
  }
  auto all = fields(body);
  RegistrationRequest request;
  request.isDelete = std::any_of(all.begin(), all.end(), [](const auto& field) { return field.first == "delete"; });
  FieldCursor cursor(std::move(all), reason);
  std::string subtype, platform, deleteFlag;
  if (request.isDelete) {
    cursor.take("device", &request.device);
    cursor.take("app", &request.app);
    cursor.take("app_ver", &request.appVersion);
    cursor.take("X-scope", &request.scope);
    cursor.take("X-kid", &request.requestId);
    cursor.take("delete", &deleteFlag);
    cursor.check(deleteFlag == "true", "delete must be \"true\"");
    request.hasKeyPart = cursor.maybe("appid", &request.appId);
    if (request.hasKeyPart) {
      cursor.take("pub2", &request.pub2);
      cursor.take("sig", &request.sig);
    }
  } else {
    cursor.take("sender", &request.sender);
    cursor.take("app", &request.app);
    cursor.take("device", &request.device);
    cursor.take("app_ver", &request.appVersion);
    cursor.take("X-subtype", &subtype);
    cursor.take("X-scope", &request.scope);
    cursor.take("plat", &platform);
    cursor.take("X-kid", &request.requestId);
    if (cursor.maybe("X-msg_ver", &request.messagingVersion)) {
      cursor.check(!request.messagingVersion.empty(), "X-msg_ver is empty");
    }
    request.hasKeyPart = cursor.take("appid", &request.appId);
    cursor.take("pub2", &request.pub2);
    cursor.take("sig", &request.sig);
    cursor.maybe("apns_token", &request.pushToken);
    cursor.check(!request.sender.empty(), "sender is empty");
    cursor.check(subtype == request.sender, "X-subtype differs from sender");
    cursor.check(platform == "2", "plat must be 2");
  }
  cursor.atEnd();
  cursor.check(!request.app.empty(), "app is empty");
  cursor.check(isDecimal(request.device), "device is not a decimal number");
  cursor.check(!request.scope.empty(), "X-scope is empty");
  cursor.check(isDecimal(request.requestId), "X-kid is not a decimal number");
  if (!cursor.ok()) return std::nullopt;
  return request;
}

}  // namespace quillet::backend
