#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "http/serialization/NKAppInfo.h"
#include "http/serialization/NKURLRequest.h"
#include "platform/net/HttpHeaders.h"
#include "platform/value/Error.h"
#include "platform/value/Value.h"

namespace quillet::http {

// Turns a method, a URL text and parameters into a request with the default
// headers, the parameters in the query string ("GET", "HEAD", "DELETE") or
// as a form body (other methods). One instance may serve many requests, but
// its settings are not guarded: set them before sharing it between threads.
class NKHTTPRequestSerializer {
 public:
  // Gives the query text for the parameters, or nullopt and the error.
  using QueryStringSerialization =
      std::function<std::optional<std::string>(const platform::Value& parameters, platform::Error* error)>;
  enum QueryStringSerializationStyle { NKHTTPRequestQueryStringDefaultStyle = 0 };

  // Defaults from the process: NKAppInfo::current() and the device's preferred languages.
  static std::shared_ptr<NKHTTPRequestSerializer> serializer();
  NKHTTPRequestSerializer();
  // Defaults from the given app info and language list.
  NKHTTPRequestSerializer(const NKAppInfo& appInfo, const std::vector<std::string>& preferredLanguages);
  virtual ~NKHTTPRequestSerializer() = default;

  // The request, or nullopt with `error` (a URL that cannot be parsed, or
  // the query callback's error).
  std::optional<NKURLRequest> requestWithMethod(std::string_view method, std::string_view URLString,
                                                const platform::Value& parameters, platform::Error* error);
  // A copy of `request` with the default headers it lacks and the parameters.
  virtual std::optional<NKURLRequest> requestBySerializingRequest(const NKURLRequest& request,
                                                                  const platform::Value& parameters,
                                                                  platform::Error* error) const;

  void setValueForHTTPHeaderField(std::optional<std::string> value, std::string_view field);
  std::optional<std::string> valueForHTTPHeaderField(std::string_view field) const;
  platform::HttpHeaders HTTPRequestHeaders() const { return headers_; }

  void setQueryStringSerializationWithStyle(int style);
  void setQueryStringSerializationWithBlock(QueryStringSerialization block);

  std::set<std::string> HTTPMethodsEncodingParametersInURI = {"GET", "HEAD", "DELETE"};

  // Request settings: reach a request only once set here; nullopt unsets.
  void setTimeoutInterval(std::optional<double> value) { timeoutInterval_ = value; }
  void setCachePolicy(std::optional<int> value) { cachePolicy_ = value; }
  void setAllowsCellularAccess(std::optional<bool> value) { allowsCellularAccess_ = value; }
  void setHTTPShouldHandleCookies(std::optional<bool> value) { HTTPShouldHandleCookies_ = value; }
  void setHTTPShouldUsePipelining(std::optional<bool> value) { HTTPShouldUsePipelining_ = value; }
  void setNetworkServiceType(std::optional<int> value) { networkServiceType_ = value; }
  // The names of the settings set so far.
  std::set<std::string> observedChangedKeyPaths() const;

 private:
  platform::HttpHeaders headers_;
  int queryStringSerializationStyle_ = NKHTTPRequestQueryStringDefaultStyle;
  QueryStringSerialization queryStringSerialization_;
  std::optional<double> timeoutInterval_;
  std::optional<int> cachePolicy_;
  std::optional<bool> allowsCellularAccess_;
  std::optional<bool> HTTPShouldHandleCookies_;
  std::optional<bool> HTTPShouldUsePipelining_;
  std::optional<int> networkServiceType_;
};

}  // namespace quillet::http
