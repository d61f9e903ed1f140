#pragma once

#include <string>
#include <string_view>

#include "platform/value/Error.h"

namespace quillet::platform {

// The URL-loading errors of the phone's platform, in its domain and codes.
// Each error's userInfo holds "NSLocalizedDescription" and
// "NSErrorFailingURLStringKey" (the URL the request was for).
class HttpError {
 public:
  static constexpr const char* kDomain = "NSURLErrorDomain";
  enum Code : int {
    kUnknown = -1,
    kCancelled = -999,
    kBadURL = -1000,
    kTimedOut = -1001,
    kUnsupportedURL = -1002,
    kCannotFindHost = -1003,
    kCannotConnectToHost = -1004,
    kNetworkConnectionLost = -1005,
    kHTTPTooManyRedirects = -1007,
    kSecureConnectionFailed = -1200,
    kServerCertificateUntrusted = -1202,
  };

  // The error of `code` for a request to `url`, with the platform's description.
  static Error make(int code, std::string_view url);
  // The error for a libcurl result code (CURLcode) of a request to `url`.
  static Error fromTransport(int curlCode, std::string_view url);
  // The platform's description of `code`.
  static std::string description(int code);
};

}  // namespace quillet::platform
