#pragma once

#include <memory>

#include "http/serialization/NKHTTPResponseSerializer.h"

namespace quillet::http {

// Validates a reply as JSON ("application/json", "text/json",
// "text/javascript") and decodes it into a Value. Thread-safe once set up.
class NKJSONResponseSerializer : public NKHTTPResponseSerializer {
 public:
  // The reading option that lets a bare scalar stand at the top level.
  static constexpr int kReadingAllowFragments = 4;

  static std::shared_ptr<NKJSONResponseSerializer> serializer();
  NKJSONResponseSerializer();

  // The decoded reply, or nil: for a reply refused by its content type (or
  // any refused reply when `error` is null), no text, the text " ", or
  // empty bytes. A refused status still decodes, with the error set.
  platform::Value responseObjectForResponse(const platform::HttpResponse* response, const std::vector<uint8_t>* data,
                                            std::optional<platform::Error>* error) const override;

  int readingOptions = 0;
  bool removesKeysWithNullValues = false;
};

}  // namespace quillet::http
