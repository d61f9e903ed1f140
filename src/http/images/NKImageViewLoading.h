#pragma once

#include <functional>
#include <memory>
#include <string>

#include "http/images/NKImageResponseSerializer.h"
#include "http/operations/NKHTTPRequestOperation.h"
#include "http/operations/NKOperationQueue.h"
#include "http/serialization/NKURLRequest.h"
#include "platform/image/Image.h"
#include "platform/net/HttpResponse.h"
#include "platform/ui/ImageView.h"

// Remote images for image views: a shared operation queue, the shared image
// cache and one running load per view, kept as the view's associated object
// "nk_imageRequestOperation". A reply lands on a view only while the view's
// current load is for the same URL, so a late reply never overwrites a newer
// request. All calls on the main thread; the views must be made with
// std::make_shared (loads hold them weakly and never keep them alive).
namespace quillet::http {

// Called with null request and response when the image came from the cache.
using ImageSuccess = std::function<void(const NKURLRequest* request, const platform::HttpResponse* response,
                                        std::shared_ptr<const platform::Image> image)>;
using ImageFailure = std::function<void(const NKURLRequest& request, const platform::HttpResponse* response,
                                        const platform::Error& error)>;

// Loads the image at `url` (URL text as the app formatted it) with the header
// "Accept: image/*", showing `placeholderName` meanwhile. Text that is no
// absolute URL stops the view's load and shows the placeholder, silently.
void setImageWithURL(platform::ImageView& view, const std::string& url);
void setImageWithURL(platform::ImageView& view, const std::string& url, const std::string& placeholderName);
// Loads `request`. With `success`, the image is handed to it instead of being
// shown; `failure` hears errors (without it the placeholder stays, silently).
// Both run on the main queue (a cache hit calls `success` at once).
void setImageWithURLRequest(platform::ImageView& view, NKURLRequest request, const std::string& placeholderName,
                            ImageSuccess success, ImageFailure failure);
// Cancels the view's running load and forgets it.
void cancelImageRequestOperation(platform::ImageView& view);

// The serializer for this view's loads; null goes back to the shared one.
void setImageResponseSerializer(platform::ImageView& view, std::shared_ptr<NKImageResponseSerializer> serializer);
std::shared_ptr<NKImageResponseSerializer> imageResponseSerializer(platform::ImageView& view);
// The view's running load, or null.
std::shared_ptr<NKHTTPRequestOperation> imageRequestOperation(platform::ImageView& view);
// The queue all image loads run on, made on first use.
NKOperationQueue& sharedImageRequestOperationQueue();

}  // namespace quillet::http
