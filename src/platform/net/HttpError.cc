#include "platform/net/HttpError.h"

#include <curl/curl.h>

namespace quillet::platform {

std::string HttpError::description(int code) {
  switch (code) {
    case kCancelled:
      return "cancelled";
    case kBadURL:
      return "unsupported URL";
    case kTimedOut:
      return "The request timed out.";
    case kUnsupportedURL:
      return "unsupported URL";
    case kCannotFindHost:
      return "A server with the specified hostname could not be found.";
    case kCannotConnectToHost:
      return "Could not connect to the server.";
    case kNetworkConnectionLost:
      return "The network connection was lost.";
    case kHTTPTooManyRedirects:
      return "too many HTTP redirects";
    case kSecureConnectionFailed:
      return "An SSL error has occurred and a secure connection to the server "
             "cannot be made.";
    case kServerCertificateUntrusted:
      return "The certificate for this server is invalid. You might be "
             "connecting to a server that is pretending "
             "to be the requested one which could put your confidential "
             "information at risk.";
    default:
      return "unknown error";
  }
}

Error HttpError::make(int code, std::string_view url) {
  Value::Dictionary info;
  info.emplace("NSLocalizedDescription", Value(description(code)));
  info.emplace("NSErrorFailingURLStringKey", Value(url));
  return Error(kDomain, code, Value(std::move(info)));
}

Error HttpError::fromTransport(int curlCode, std::string_view url) {
  switch (curlCode) {
    case CURLE_ABORTED_BY_CALLBACK:
      return make(kCancelled, url);
    case CURLE_URL_MALFORMAT:
      return make(kBadURL, url);
    case CURLE_UNSUPPORTED_PROTOCOL:
      return make(kUnsupportedURL, url);
    case CURLE_OPERATION_TIMEDOUT:
      return make(kTimedOut, url);
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
      return make(kCannotFindHost, url);
    case CURLE_COULDNT_CONNECT:
      return make(kCannotConnectToHost, url);
    case CURLE_GOT_NOTHING:
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_PARTIAL_FILE:
      return make(kNetworkConnectionLost, url);
    case CURLE_TOO_MANY_REDIRECTS:
      return make(kHTTPTooManyRedirects, url);
    case CURLE_PEER_FAILED_VERIFICATION:
      return make(kServerCertificateUntrusted, url);
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
    case CURLE_SSL_CRL_BADFILE:
    case CURLE_SSL_PINNEDPUBKEYNOTMATCH:
    case CURLE_SSL_INVALIDCERTSTATUS:
      return make(kSecureConnectionFailed, url);
    default:
      return make(kUnknown, url);
  }
}

}  // namespace quillet::platform
