#include "platform/net/HttpTransfer.h"

#include <openssl/bio.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <algorithm>
#include <limits>

#include "platform/net/HttpError.h"

namespace quillet::platform {

namespace {

bool isFollowableRedirect(int status) {
  return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

std::vector<uint8_t> derOf(X509* certificate) {
  std::vector<uint8_t> der;
  const int length = i2d_X509(certificate, nullptr);
  if (length > 0) {
    der.resize(static_cast<size_t>(length));
    unsigned char* out = der.data();
    i2d_X509(certificate, &out);
  }
  return der;
}

// The host part of `url` without IPv6 brackets; "" when unreadable.
std::string hostOf(const std::string& url) {
  std::string host;
  CURLU* parsed = curl_url();
  char* part = nullptr;
  if (parsed && curl_url_set(parsed, CURLUPART_URL, url.c_str(), 0) == CURLUE_OK &&
      curl_url_get(parsed, CURLUPART_HOST, &part, 0) == CURLUE_OK) {
    host = part;
    curl_free(part);
  }
  curl_url_cleanup(parsed);
  if (host.size() >= 2 && host.front() == '[' && host.back() == ']') host = host.substr(1, host.size() - 2);
  return host;
}

// A certificate in PEM, as libcurl's certificate report gives it, in DER; empty
// when unreadable.
std::vector<uint8_t> derFromPem(std::string_view pem) {
  std::vector<uint8_t> der;
  BIO* bio = BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size()));
  if (!bio) return der;
  if (X509* certificate = PEM_read_bio_X509(bio, nullptr, nullptr, nullptr)) {
    der = derOf(certificate);
    X509_free(certificate);
  }
  BIO_free(bio);
  return der;
}

}  // namespace

HttpTransfer::HttpTransfer(HttpRequest request, std::shared_ptr<HttpDelivery> delivery,
                           const HttpSessionOptions& options)
    : request_(std::move(request)),
      delivery_(std::move(delivery)),
      options_(options),
      url_(request_.url),
      method_(request_.method),
      body_(request_.body),
      startedAt_(options_.clock->monotonicSeconds()),
      lastActivity_(startedAt_) {}

HttpTransfer::~HttpTransfer() = default;

// A failed append leaves the list as it was (and owned here).
void HttpTransfer::appendHeader(const std::string& line) {
  curl_slist* longer = curl_slist_append(headerList_.get(), line.c_str());
  if (longer == nullptr) return;
  (void)headerList_.release();
  headerList_.reset(longer);
}

bool HttpTransfer::prepare() {
  if (!easy_) {
    easy_.reset(curl_easy_init());
    if (!easy_) {
      fail(HttpError::kUnknown);
      return false;
    }
  } else {
    curl_easy_reset(easy_.get());
  }
  answer_ = HttpResponse();
  headersDone_ = false;
  holdingRedirect_ = false;
  heldBody_.clear();
  lastUploaded_ = 0;
  trustRefused_ = false;
  lastActivity_ = options_.clock->monotonicSeconds();

  curl_easy_setopt(easy_.get(), CURLOPT_PRIVATE, this);
  curl_easy_setopt(easy_.get(), CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(easy_.get(), CURLOPT_URL, url_.c_str());
  curl_easy_setopt(easy_.get(), CURLOPT_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(easy_.get(), CURLOPT_FOLLOWLOCATION, 0L);  // hops are followed here, one by one
  curl_easy_setopt(easy_.get(), CURLOPT_ACCEPT_ENCODING, "");
  curl_easy_setopt(easy_.get(), CURLOPT_HEADERFUNCTION, &HttpTransfer::headerCallback);
  curl_easy_setopt(easy_.get(), CURLOPT_HEADERDATA, this);
  curl_easy_setopt(easy_.get(), CURLOPT_WRITEFUNCTION, &HttpTransfer::writeCallback);
  curl_easy_setopt(easy_.get(), CURLOPT_WRITEDATA, this);
  curl_easy_setopt(easy_.get(), CURLOPT_XFERINFOFUNCTION, &HttpTransfer::progressCallback);
  curl_easy_setopt(easy_.get(), CURLOPT_XFERINFODATA, this);
  curl_easy_setopt(easy_.get(), CURLOPT_NOPROGRESS, 0L);
  curl_easy_setopt(easy_.get(), CURLOPT_SSL_VERIFYPEER, 1L);
  if (request_.serverTrustHook) {
    // The hook judges the host name too. Its connections are its own: the
    // verdict (and the pointer the handshake calls back with) never reach
    // another request.
    curl_easy_setopt(easy_.get(), CURLOPT_SSL_VERIFYHOST, 0L);
    curl_easy_setopt(easy_.get(), CURLOPT_SSL_CTX_FUNCTION, &HttpTransfer::sslContextCallback);
    curl_easy_setopt(easy_.get(), CURLOPT_SSL_CTX_DATA, this);
    curl_easy_setopt(easy_.get(), CURLOPT_FRESH_CONNECT, 1L);
    curl_easy_setopt(easy_.get(), CURLOPT_FORBID_REUSE, 1L);
  } else {
    curl_easy_setopt(easy_.get(), CURLOPT_SSL_VERIFYHOST, 2L);
  }
  curl_easy_setopt(easy_.get(), CURLOPT_CERTINFO, 1L);
  if (!options_.caFile.empty()) curl_easy_setopt(easy_.get(), CURLOPT_CAINFO, options_.caFile.c_str());
  if (!options_.userAgent.empty()) curl_easy_setopt(easy_.get(), CURLOPT_USERAGENT, options_.userAgent.c_str());

  if (method_ == "GET" && body_.empty()) {
    curl_easy_setopt(easy_.get(), CURLOPT_HTTPGET, 1L);
  } else if (method_ == "HEAD") {
    curl_easy_setopt(easy_.get(), CURLOPT_NOBODY, 1L);
  } else {
    if (method_ == "POST" || !body_.empty()) {
      curl_easy_setopt(easy_.get(), CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body_.size()));
      curl_easy_setopt(easy_.get(), CURLOPT_POSTFIELDS,
                       body_.empty() ? "" : reinterpret_cast<const char*>(body_.data()));
    }
    if (method_ != "POST") curl_easy_setopt(easy_.get(), CURLOPT_CUSTOMREQUEST, method_.c_str());
  }

  headerList_.reset();
  for (const auto& [name, value] : request_.headers.fields()) {
    // libcurl sends a field with an empty value only when written "Name;".
    appendHeader(value.empty() ? name + ";" : name + ": " + value);
  }
  // No "Expect: 100-continue" pause before larger bodies unless asked for.
  if (!request_.headers.contains("Expect")) appendHeader("Expect:");
  curl_easy_setopt(easy_.get(), CURLOPT_HTTPHEADER, headerList_.get());
  return true;
}

size_t HttpTransfer::headerCallback(char* data, size_t size, size_t count, void* self) {
  auto* transfer = static_cast<HttpTransfer*>(self);
  transfer->lastActivity_ = transfer->options_.clock->monotonicSeconds();
  transfer->headerLine(std::string_view(data, size * count));
  return size * count;
}

size_t HttpTransfer::writeCallback(char* data, size_t size, size_t count, void* self) {
  auto* transfer = static_cast<HttpTransfer*>(self);
  transfer->lastActivity_ = transfer->options_.clock->monotonicSeconds();
  if (transfer->delivery_->finished()) return 0;  // cancelled: stop reading
  transfer->bodyBytes(reinterpret_cast<const uint8_t*>(data), size * count);
  return size * count;
}

int HttpTransfer::progressCallback(void* self, curl_off_t, curl_off_t, curl_off_t, curl_off_t uploaded) {
  auto* transfer = static_cast<HttpTransfer*>(self);
  if (uploaded != transfer->lastUploaded_) {
    transfer->lastUploaded_ = uploaded;
    transfer->lastActivity_ = transfer->options_.clock->monotonicSeconds();
  }
  return transfer->delivery_->finished() ? 1 : 0;
}

CURLcode HttpTransfer::sslContextCallback(CURL*, void* sslContext, void* self) {
  SSL_CTX_set_cert_verify_callback(static_cast<SSL_CTX*>(sslContext), &HttpTransfer::verifyCallback, self);
  return CURLE_OK;
}

int HttpTransfer::verifyCallback(X509_STORE_CTX* store, void* self) {
  auto* transfer = static_cast<HttpTransfer*>(self);
  HttpServerTrust trust;
  trust.host = hostOf(transfer->url_);
  X509* leaf = X509_STORE_CTX_get0_cert(store);
  if (leaf) {
    trust.certificateChain.push_back(derOf(leaf));
    trust.hostMatches = X509_check_host(leaf, trust.host.c_str(), trust.host.size(), 0, nullptr) == 1 ||
                        X509_check_ip_asc(leaf, trust.host.c_str(), 0) == 1;
  }
  if (STACK_OF(X509)* sent = X509_STORE_CTX_get0_untrusted(store)) {
    for (int i = 0; i < sk_X509_num(sent); ++i) {
      X509* certificate = sk_X509_value(sent, i);
      if (!leaf || X509_cmp(certificate, leaf) != 0) trust.certificateChain.push_back(derOf(certificate));
    }
  }
  trust.chainTrusted = X509_verify_cert(store) == 1;
  if (!transfer->request_.serverTrustHook(trust)) {
    transfer->trustRefused_ = true;
    X509_STORE_CTX_set_error(store, X509_V_ERR_APPLICATION_VERIFICATION);
    return 0;
  }
  // Accepted: the handshake (and libcurl's check of its result) go on.
  X509_STORE_CTX_set_error(store, X509_V_OK);
  return 1;
}

void HttpTransfer::headerLine(std::string_view line) {
  if (line.starts_with("HTTP/")) {
    // A new status line starts a new block (after "100 Continue", say).
    answer_.headers.clear();
    headersDone_ = false;
    const size_t space = line.find(' ');
    int status = 0;
    for (size_t i = space == std::string_view::npos ? line.size() : space + 1; i < line.size(); ++i) {
      if (line[i] < '0' || line[i] > '9') break;
      status = status * 10 + (line[i] - '0');
    }
    answer_.statusCode = status;
    return;
  }
  if (headersDone_) return;  // trailers after a chunked body
  const std::string_view text = HttpHeaders::trim(line);
  if (text.empty()) {
    if (answer_.statusCode >= 200 || answer_.statusCode == 0) headersEnded();
    return;
  }
  const size_t colon = text.find(':');
  if (colon == std::string_view::npos) return;
  answer_.headers.add(std::string(HttpHeaders::trim(text.substr(0, colon))),
                      std::string(HttpHeaders::trim(text.substr(colon + 1))));
}

void HttpTransfer::headersEnded() {
  headersDone_ = true;
  answer_.url = url_;
  if (request_.followRedirects && isFollowableRedirect(answer_.statusCode) && answer_.headers.contains("Location")) {
    holdingRedirect_ = true;
    return;
  }
  readCertificateChain();
  delivered_ = true;
  delivery_->response(answer_);
}

void HttpTransfer::bodyBytes(const uint8_t* bytes, size_t size) {
  if (holdingRedirect_) {
    heldBody_.insert(heldBody_.end(), bytes, bytes + size);
  } else {
    delivery_->data(bytes, size);
  }
}

void HttpTransfer::readCertificateChain() {
  curl_certinfo* info = nullptr;
  if (curl_easy_getinfo(easy_.get(), CURLINFO_CERTINFO, &info) != CURLE_OK || !info) return;
  for (int i = 0; i < info->num_of_certs; ++i) {
    for (curl_slist* field = info->certinfo[i]; field; field = field->next) {
      const std::string_view text = field->data;
      if (!text.starts_with("Cert:")) continue;
      auto der = derFromPem(text.substr(5));
      if (!der.empty()) answer_.certificateChain.push_back(std::move(der));
    }
  }
}

bool HttpTransfer::followRedirect() {
  char* location = nullptr;
  if (curl_easy_getinfo(easy_.get(), CURLINFO_REDIRECT_URL, &location) != CURLE_OK || !location) return false;
  const std::string next = location;
  if (request_.redirectHook && !request_.redirectHook(answer_, next)) return false;
  const int status = answer_.statusCode;
  if ((status == 303 && method_ != "HEAD") || ((status == 301 || status == 302) && method_ == "POST")) {
    method_ = "GET";
    body_.clear();
    request_.headers.remove("Content-Type");
    request_.headers.remove("Content-Length");
  }
  url_ = next;
  return true;
}

bool HttpTransfer::hopFinished(CURLcode result) {
  if (delivery_->finished()) return false;
  if (result == CURLE_OK && holdingRedirect_) {
    if (followRedirect()) {
      if (++redirects_ > options_.maxRedirects) {
        fail(HttpError::kHTTPTooManyRedirects);
        return false;
      }
      return prepare();
    }
    // Refused: the 3xx answer is the final one.
    holdingRedirect_ = false;
    readCertificateChain();
    delivered_ = true;
    delivery_->response(answer_);
    if (!heldBody_.empty()) delivery_->data(heldBody_.data(), heldBody_.size());
  }
  if (result != CURLE_OK) {
    delivery_->complete(trustRefused_ ? HttpError::make(HttpError::kCancelled, url_)
                                      : HttpError::fromTransport(result, url_));
    return false;
  }
  if (!delivered_) {
    answer_.url = url_;
    delivered_ = true;
    delivery_->response(answer_);
  }
  delivery_->complete(std::nullopt);
  return false;
}

void HttpTransfer::fail(int code) { delivery_->complete(HttpError::make(code, url_)); }

double HttpTransfer::deadline() const {
  double deadline = std::numeric_limits<double>::infinity();
  if (request_.timeoutSeconds > 0) deadline = lastActivity_ + request_.timeoutSeconds;
  if (options_.resourceTimeoutSeconds > 0) deadline = std::min(deadline, startedAt_ + options_.resourceTimeoutSeconds);
  return deadline;
}

}  // namespace quillet::platform
