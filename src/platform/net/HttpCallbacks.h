#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "platform/net/HttpResponse.h"
#include "platform/value/Error.h"

namespace quillet::platform {

// Progressive delivery of one request, in the manner of the phone's
// connection delegate. Every callback runs on the queue the request was
// started with; on a serial or main queue they run in this order:
// onResponse once (final answer's status and headers, no body), onData for
// each piece of the body, then onComplete exactly once (nullopt on success).
// A failure before any answer gives onComplete alone. Any callback may be empty.
struct HttpStreamCallbacks {
  std::function<void(const HttpResponse& response)> onResponse;
  std::function<void(const std::vector<uint8_t>& chunk)> onData;
  std::function<void(const std::optional<Error>& error)> onComplete;
};

// The whole answer at once, exactly once, on the queue the request was
// started with. On success `response` holds the body and `error` is empty.
// On failure `error` is set, and `response` holds what had arrived when
// the answer's headers had come (else it is empty).
using HttpCompletion = std::function<void(std::optional<HttpResponse> response, std::optional<Error> error)>;

}  // namespace quillet::platform
