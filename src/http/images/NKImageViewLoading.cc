#include "http/images/NKImageViewLoading.h"

#include "http/images/NKImageCache.h"
#include "http/operations/NKHTTPRequestOperation.h"
#include "platform/text/Url.h"

namespace quillet::http {

using platform::Image;
using platform::ImageView;

namespace {

constexpr const char* kOperationKey = "nk_imageRequestOperation";
constexpr const char* kSerializerKey = "nk_imageResponseSerializer";

const std::shared_ptr<NKImageResponseSerializer>& sharedImageResponseSerializer() {
  static const auto* serializer =
      new std::shared_ptr<NKImageResponseSerializer>(NKImageResponseSerializer::serializer());
  return *serializer;
}

void setImageRequestOperation(ImageView& view, std::shared_ptr<NKHTTPRequestOperation> operation) {
  view.setAssociatedObject(kOperationKey, std::move(operation));
}

// The view, when it still exists and its current load is for `request`'s URL.
std::shared_ptr<ImageView> viewAwaiting(const std::weak_ptr<platform::View>& weakView, const NKURLRequest& request) {
  auto view = std::static_pointer_cast<ImageView>(weakView.lock());
  if (!view) return nullptr;
  auto current = imageRequestOperation(*view);
  return current && current->request().URL == request.URL ? view : nullptr;
}

void clearIfCurrent(ImageView& view, const std::shared_ptr<NKHTTPRequestOperation>& operation) {
  if (imageRequestOperation(view) == operation) setImageRequestOperation(view, nullptr);
}

void showLoadedImage(ImageView& view, const std::string& url, std::shared_ptr<const Image> image) {
  view.setImageWithURL(url);
  view.setImage(std::move(image));
}

bool isAbsoluteURL(const std::string& text) {
  auto url = platform::Url::parse(text);
  return url && !url->isOpaque() && !url->host().empty();
}

}  // namespace

std::shared_ptr<NKHTTPRequestOperation> imageRequestOperation(ImageView& view) {
  return std::static_pointer_cast<NKHTTPRequestOperation>(view.associatedObject(kOperationKey));
}

NKOperationQueue& sharedImageRequestOperationQueue() {
  // Lives for the whole process; each operation keeps itself alive while it runs.
  static auto* queue = new NKOperationQueue();
  return *queue;
}

void setImageResponseSerializer(ImageView& view, std::shared_ptr<NKImageResponseSerializer> serializer) {
  view.setAssociatedObject(kSerializerKey, std::move(serializer));
}

std::shared_ptr<NKImageResponseSerializer> imageResponseSerializer(ImageView& view) {
  auto own = std::static_pointer_cast<NKImageResponseSerializer>(view.associatedObject(kSerializerKey));
  return own ? own : sharedImageResponseSerializer();
}

void setImageWithURL(ImageView& view, const std::string& url) { setImageWithURL(view, url, ""); }

void setImageWithURL(ImageView& view, const std::string& url, const std::string& placeholderName) {
  if (!isAbsoluteURL(url)) {
    // A null URL: nothing to load.
    cancelImageRequestOperation(view);
    view.setImageNamed(placeholderName);
    return;
  }
  NKURLRequest request(url);
  request.setValueForHTTPHeaderField("image/*", "Accept");
  setImageWithURLRequest(view, std::move(request), placeholderName, nullptr, nullptr);
}

void setImageWithURLRequest(ImageView& view, NKURLRequest request, const std::string& placeholderName,
                            ImageSuccess success, ImageFailure failure) {
  cancelImageRequestOperation(view);

  if (auto cached = NKImageCache::sharedImageCache().cachedImageForRequest(request)) {
    if (success) {
      success(nullptr, nullptr, std::move(cached));
    } else {
      showLoadedImage(view, request.URL, std::move(cached));
    }
    setImageRequestOperation(view, nullptr);
    return;
  }

  if (!placeholderName.empty()) view.setImageWithURL(request.URL, placeholderName);

  auto operation = NKHTTPRequestOperation::make(std::move(request));
  operation->setResponseSerializer(imageResponseSerializer(view));
  setImageRequestOperation(view, operation);

  const std::weak_ptr<platform::View> weakView = view.weak_from_this();
  operation->setCompletionBlockWithSuccess(
      [weakView, success](const std::shared_ptr<NKHTTPRequestOperation>& finished, const platform::Value& object) {
        const NKURLRequest& finishedRequest = finished->request();
        auto image = object.objectAs<Image>();
        if (auto view = viewAwaiting(weakView, finishedRequest)) {
          if (success) {
            const auto response = finished->response();
            success(&finishedRequest, response ? &*response : nullptr, image);
          } else {
            showLoadedImage(*view, finishedRequest.URL, image);
          }
          clearIfCurrent(*view, finished);
        }
        NKImageCache::sharedImageCache().cacheImage(image, finishedRequest);
      },
      [weakView, failure](const std::shared_ptr<NKHTTPRequestOperation>& finished, const platform::Error& error) {
        const NKURLRequest& finishedRequest = finished->request();
        if (auto view = viewAwaiting(weakView, finishedRequest)) {
          if (failure) {
            const auto response = finished->response();
            failure(finishedRequest, response ? &*response : nullptr, error);
          }
          clearIfCurrent(*view, finished);
        }
      });

  sharedImageRequestOperationQueue().addOperation(operation);
}

void cancelImageRequestOperation(ImageView& view) {
  if (auto operation = imageRequestOperation(view)) operation->cancel();
  setImageRequestOperation(view, nullptr);
}

}  // namespace quillet::http
