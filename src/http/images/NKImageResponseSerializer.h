#pragma once

#include <memory>

#include "http/serialization/NKHTTPResponseSerializer.h"
#include "platform/image/Image.h"

namespace quillet::http {

// Validates a reply as an image (TIFF, JPEG, GIF, PNG, icon and bitmap MIME
// types) and yields Value::object(platform::Image). With
// automaticallyInflatesResponseImage the picture is decoded here, on the
// processing queue, so that showing it later costs nothing on the main
// thread; pictures of more than kMaxInflatedPixels pixels or more than 8
// bits per component stay encoded. Settings are made before the serializer
// is shared; responseObjectForResponse may then run on many threads at once.
class NKImageResponseSerializer : public NKHTTPResponseSerializer {
 public:
  static constexpr long kMaxInflatedPixels = 1024L * 1024L;

  static std::shared_ptr<NKImageResponseSerializer> serializer();
  // Reads the main screen's scale: make it on the main thread.
  NKImageResponseSerializer();

  // The image, or nil: for a reply refused by its content type (or any
  // refused reply when `error` is null), no data, or data that is no image
  // the platform reads. A refused status still yields the image, with the error set.
  platform::Value responseObjectForResponse(const platform::HttpResponse* response, const std::vector<uint8_t>* data,
                                            std::optional<platform::Error>* error) const override;

  double imageScale;
  bool automaticallyInflatesResponseImage = true;

 private:
  std::shared_ptr<const platform::Image> inflatedImage(const std::vector<uint8_t>& data) const;
};

}  // namespace quillet::http
