#pragma once

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/net/HttpResponse.h"
#include "platform/value/Error.h"
#include "platform/value/Value.h"

namespace quillet::http {

// Decides whether a reply is acceptable (status code and MIME type) and hands
// its bytes on. A null response is not an HTTP response and is always valid;
// null data means no data at all. responseObjectForResponse may run on many
// threads at once; settings must be made before the serializer is shared.
class NKHTTPResponseSerializer {
 public:
  static std::shared_ptr<NKHTTPResponseSerializer> serializer();
  NKHTTPResponseSerializer() = default;
  virtual ~NKHTTPResponseSerializer() = default;

  // True when acceptable. When not, and the reply lets one be made, `error`
  // gets -1016 (unacceptable content type) or -1011 (unacceptable status,
  // with a content-type error as its underlying error) in NKSerializationError::kDomain.
  bool validateResponse(const platform::HttpResponse* response, const std::vector<uint8_t>* data,
                        std::optional<platform::Error>* error) const;
  // The reply's bytes (nil without data); `error` tells whether the reply failed.
  virtual platform::Value responseObjectForResponse(const platform::HttpResponse* response,
                                                    const std::vector<uint8_t>* data,
                                                    std::optional<platform::Error>* error) const;

  std::string stringEncoding = "UTF-8";
  // Accepted status codes; nullopt accepts all. Default 200 to 299.
  std::optional<std::set<int>> acceptableStatusCodes = defaultStatusCodes();
  // Accepted MIME types; nullopt (the default) accepts all.
  std::optional<std::set<std::string>> acceptableContentTypes;

 private:
  static std::set<int> defaultStatusCodes();
};

}  // namespace quillet::http
