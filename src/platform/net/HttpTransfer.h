#pragma once

#include <curl/curl.h>
#include <openssl/x509.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/net/HttpDelivery.h"
#include "platform/net/HttpRequest.h"
#include "platform/net/HttpResponse.h"
#include "platform/net/HttpSessionOptions.h"

namespace quillet::platform {

// One request on the session's thread: owns its libcurl easy handle, reads
// the answer's header lines, follows redirects one hop at a time, and keeps
// the time of the last byte moved for the idle time-out. Used only on the
// session's thread; its delivery is what other threads touch.
class HttpTransfer {
 public:
  // options.clock must be set.
  HttpTransfer(HttpRequest request, std::shared_ptr<HttpDelivery> delivery, const HttpSessionOptions& options);
  ~HttpTransfer();
  HttpTransfer(const HttpTransfer&) = delete;
  HttpTransfer& operator=(const HttpTransfer&) = delete;

  // Sets the easy handle up for the current hop; false (and the request
  // failed) when libcurl refuses the set-up.
  bool prepare();
  CURL* handle() const { return easy_.get(); }
  HttpDelivery& delivery() { return *delivery_; }

  // The hop ended with `result`. True when another hop (a redirect) is due:
  // the caller prepares it and adds the handle again. Otherwise the request
  // has been completed.
  bool hopFinished(CURLcode result);
  // Fails the request with `code` of the URL error domain.
  void fail(int code);

  // When the request times out (monotonic seconds of the clock) unless a byte moves first.
  double deadline() const;

 private:
  static size_t headerCallback(char* data, size_t size, size_t count, void* self);
  static size_t writeCallback(char* data, size_t size, size_t count, void* self);
  static int progressCallback(void* self, curl_off_t, curl_off_t, curl_off_t, curl_off_t uploaded);
  static CURLcode sslContextCallback(CURL* easy, void* sslContext, void* self);
  static int verifyCallback(X509_STORE_CTX* store, void* self);

  void headerLine(std::string_view line);
  void headersEnded();
  void bodyBytes(const uint8_t* bytes, size_t size);
  bool followRedirect();
  void readCertificateChain();

  HttpRequest request_;
  std::shared_ptr<HttpDelivery> delivery_;
  HttpSessionOptions options_;
  // The C handles, freed by their owners.
  struct EasyHandleFree {
    void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
  };
  struct HeaderListFree {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
  };
  void appendHeader(const std::string& line);

  std::unique_ptr<CURL, EasyHandleFree> easy_;
  std::unique_ptr<curl_slist, HeaderListFree> headerList_;

  // The current hop.
  std::string url_;
  std::string method_;
  std::vector<uint8_t> body_;
  HttpResponse answer_;  // the hop's status and headers as they arrive
  bool headersDone_ = false;
  bool holdingRedirect_ = false;  // a 3xx that may be followed: not delivered yet
  std::vector<uint8_t> heldBody_;
  int redirects_ = 0;
  bool delivered_ = false;     // the final answer's headers went to the delivery
  bool trustRefused_ = false;  // the server trust hook said no

  double startedAt_;
  double lastActivity_;  // when a byte last moved
  curl_off_t lastUploaded_ = 0;
};

}  // namespace quillet::platform
