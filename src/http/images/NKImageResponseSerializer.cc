#include "http/images/NKImageResponseSerializer.h"

#include "http/serialization/NKSerializationError.h"
#include "platform/image/Image.h"
#include "platform/image/ImageDecoder.h"
#include "platform/ui/Screen.h"

namespace quillet::http {

using platform::Error;
using platform::Image;
using platform::ImageDecoder;
using platform::Value;
using E = NKSerializationError;

std::shared_ptr<NKImageResponseSerializer> NKImageResponseSerializer::serializer() {
  return std::make_shared<NKImageResponseSerializer>();
}

NKImageResponseSerializer::NKImageResponseSerializer() : imageScale(platform::Screen::main().scale) {
  acceptableContentTypes =
      std::set<std::string>{"image/tiff",   "image/jpeg", "image/gif",   "image/png",       "image/ico",
                            "image/x-icon", "image/bmp",  "image/x-bmp", "image/x-xbitmap", "image/x-win-bitmap"};
}

Value NKImageResponseSerializer::responseObjectForResponse(const platform::HttpResponse* response,
                                                           const std::vector<uint8_t>* data,
                                                           std::optional<Error>* error) const {
  if (!validateResponse(response, data, error)) {
    if (!error || (*error && E::hasCodeInDomain(**error, E::kCannotDecodeContentData, E::kDomain))) return Value();
  }
  if (!data) return Value();
  return Value::object(automaticallyInflatesResponseImage ? inflatedImage(*data)
                                                          : Image::imageWithData(*data, imageScale));
}

std::shared_ptr<const Image> NKImageResponseSerializer::inflatedImage(const std::vector<uint8_t>& data) const {
  auto image = Image::imageWithData(data, imageScale);
  if (!image) return nullptr;
  const long pixels = static_cast<long>(image->pixelWidth()) * image->pixelHeight();
  if (pixels > kMaxInflatedPixels || image->bitsPerComponent() > 8) return image;
  // Every format the platform reads goes through the one decoder; a picture
  // whose body fails to decode stays as the header described it.
  auto bitmap = ImageDecoder::decode(data);
  if (!bitmap) return image;
  return Image::imageWithBitmap(std::move(bitmap), imageScale, image->format());
}

}  // namespace quillet::http
