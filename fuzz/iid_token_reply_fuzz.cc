// Arbitrary bytes as a registration reply body: the line parser, then the
// token-text reader on whatever "token" it found. Never crashes.
#include <cstddef>
#include <cstdint>
#include <string>

#include "instanceid/registration/InstanceIDRegistrationClient.h"
#include "instanceid/registration/InstanceIDRegistrationContent.h"
#include "instanceid/support/InstanceIDLogger.h"
#include "platform/runloop/RunLoop.h"

namespace {

class SilentWriter : public quillet::instanceid::InstanceIDLogWriter {
 public:
  void logMessage(const std::string&, quillet::instanceid::InstanceIDLogLevel) override {}
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using quillet::instanceid::InstanceIDRegistrationClient;
  using quillet::instanceid::InstanceIDRegistrationContent;
  static const bool silenced = [] {
    quillet::instanceid::InstanceIDLogger::shared().setWriter(std::make_shared<SilentWriter>());
    return true;
  }();
  (void)silenced;
  const std::string body(reinterpret_cast<const char*>(data), size);
  const auto parsed = InstanceIDRegistrationContent::parseFetchTokenResponse(body);
  const auto token = parsed.find("token");
  if (token != parsed.end()) {
    InstanceIDRegistrationContent::tokenFromTokenText(token->second, 7);
    InstanceIDRegistrationClient::parseToken(
        token->second, "", 7, "entity", nullptr,
        [](const std::optional<std::string>&, const std::optional<quillet::platform::Error>&) {});
    quillet::platform::RunLoop::main().runPending();
  }
  return 0;
}
