#pragma once

#include <memory>
#include <optional>
#include <string>

#include "news/api/WebmanagerDelegate.h"
#include "platform/value/Value.h"

namespace quillet::platform {
class Application;
}

namespace quillet::news {

// The one door between the screens and the news server. A request is an
// HTTP GET of "<base><method>" with the parameters in the query string; the
// JSON reply's "status" picks the delegate's success or failure operation,
// performed on the main thread. With no reachable network an alert
// "No Internet Connection Found" is shown and nothing is called back;
// transport failures are only logged.
//
// Stateless apart from its settings; call from the main thread.
class Webmanager {
 public:
  static constexpr const char* kDefaultAPIBase = "http://127.0.0.1:8088/newsapp/api/";
  static constexpr const char* kNoInternetMessage = "No Internet Connection Found";

  // `apiBase` must end in "/" (one is added when it does not). The alert is
  // shown in `application`, or in the shared application at the time when
  // null; a given application must outlive this object.
  explicit Webmanager(std::string apiBase = kDefaultAPIBase, platform::Application* application = nullptr);

  // The process-wide instance, made once.
  static Webmanager& sharedObject();
  // Sets the base of the process-wide instance (the app's --api-base).
  void setAPIBase(std::string apiBase);
  const std::string& apiBase() const { return apiBase_; }

  // `parameters` is a dictionary or nil. The delegate is held by the request
  // until it ends; absent operation names mean the reply is decoded, logged
  // and dropped.
  void sendRequestWithUrl(const std::string& method, const platform::Value& parameters,
                          std::shared_ptr<WebmanagerDelegate> delegate, std::optional<std::string> successOperation,
                          std::optional<std::string> failureOperation);

  // The reply as the client reads it: the decoded JSON, or nil when the bytes are not JSON.
  static platform::Value decodeReply(const platform::Value& responseObject);

 private:
  void showNoInternetAlert();

  std::string apiBase_;
  platform::Application* application_;
};

}  // namespace quillet::news
