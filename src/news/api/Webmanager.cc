#include "news/api/Webmanager.h"

#include <string_view>
#include <utility>

#include "http/operations/NKHTTPRequestOperationManager.h"
#include "http/reachability/Reachability.h"
#include "http/serialization/NKHTTPResponseSerializer.h"
#include "platform/dispatch/DispatchQueue.h"
#include "platform/log/Log.h"
#include "platform/ui/AlertController.h"
#include "platform/ui/Application.h"
#include "platform/value/Format.h"
#include "platform/value/Json.h"

namespace quillet::news {

using platform::Value;

namespace {

std::string withFinalSlash(std::string base) {
  if (base.empty() || base.back() != '/') base.push_back('/');
  return base;
}

// Performs `operation` of `delegate` with `reply` on the main thread and waits for it.
void performOnMain(const std::shared_ptr<WebmanagerDelegate>& delegate, const std::string& operation,
                   const Value& reply) {
  auto main = platform::DispatchQueue::main();
  if (main->isCurrent()) {
    delegate->performOperation(operation, reply);
  } else {
    main->sync([&] { delegate->performOperation(operation, reply); });
  }
}

}  // namespace

Webmanager::Webmanager(std::string apiBase, platform::Application* application)
    : apiBase_(withFinalSlash(std::move(apiBase))), application_(application) {}

Webmanager& Webmanager::sharedObject() {
  static Webmanager instance;
  return instance;
}

void Webmanager::setAPIBase(std::string apiBase) { apiBase_ = withFinalSlash(std::move(apiBase)); }

Value Webmanager::decodeReply(const Value& responseObject) {
  if (responseObject.isBytes()) {
    const auto& bytes = responseObject.bytesData();
    return platform::jsonDecode(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
  }
  if (responseObject.isString()) return platform::jsonDecode(responseObject.string());
  return Value();
}

void Webmanager::sendRequestWithUrl(const std::string& method, const Value& parameters,
                                    std::shared_ptr<WebmanagerDelegate> delegate,
                                    std::optional<std::string> successOperation,
                                    std::optional<std::string> failureOperation) {
  auto reachability = http::Reachability::reachabilityForInternetConnection();
  const auto status = reachability ? reachability->currentReachabilityStatus() : http::Reachability::NotReachable;
  if (status != http::Reachability::ReachableViaWiFi && status != http::Reachability::ReachableViaWWAN) {
    showNoInternetAlert();
    return;
  }

  auto manager = http::NKHTTPRequestOperationManager::manager();
  manager->responseSerializer = http::NKHTTPResponseSerializer::serializer();
  const std::string url = platform::format("%@%@", apiBase_, method);

  manager->GET(
      url, parameters,
      [delegate, successOperation, failureOperation](const std::shared_ptr<http::NKHTTPRequestOperation>&,
                                                     const Value& responseObject) {
        const Value reply = decodeReply(responseObject);
        platform::Log::write(platform::format("%@-----------", reply));
        const bool ok = reply.isDictionary() && reply["status"].boolValue();
        const std::optional<std::string>& operation = ok ? successOperation : failureOperation;
        if (operation && delegate && delegate->respondsToOperation(*operation)) {
          performOnMain(delegate, *operation, reply);
        }
      },
      [delegate](const std::shared_ptr<http::NKHTTPRequestOperation>&, const platform::Error& error) {
        platform::Log::write(platform::format("Error: %@", error.description()));
      });
}

void Webmanager::showNoInternetAlert() {
  platform::Application& application =
      application_ != nullptr ? *application_ : platform::Application::sharedApplication();
  auto top = application.window().topScreen();
  if (!top) {
    platform::Log::write(std::string("Webmanager: no screen to show \"") + kNoInternetMessage + "\" on");
    return;
  }
  auto alert = platform::AlertController::alertControllerWithTitle("", kNoInternetMessage);
  alert->addAction(platform::AlertAction{"OK", platform::AlertActionStyle::Default, nullptr});
  top->presentViewController(alert, true);
}

}  // namespace quillet::news
