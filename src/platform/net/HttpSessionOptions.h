#pragma once

#include <memory>
#include <string>

#include "platform/clock/Clock.h"

namespace quillet::platform {

// How a session makes its requests. A plain value, copied by the session.
struct HttpSessionOptions {
  // PEM file of the certificate authorities to trust; "" = the system's store.
  std::string caFile;
  // Sent as User-Agent unless a request names its own; "" = none.
  std::string userAgent;
  // The longest a whole request may take, redirects included; <= 0 = no limit.
  double resourceTimeoutSeconds = 7 * 24 * 3600.0;
  // Redirects followed before a request fails with "too many HTTP redirects".
  int maxRedirects = 16;
  // Measures the time-outs (monotonic time); null = the system clock.
  std::shared_ptr<Clock> clock;
};

}  // namespace quillet::platform
