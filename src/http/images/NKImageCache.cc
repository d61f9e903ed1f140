#include "http/images/NKImageCache.h"

#include "platform/text/Url.h"
#include "platform/ui/Application.h"

namespace quillet::http {

using platform::Image;

NKImageCache& NKImageCache::sharedImageCache() {
  // Lives for the whole process, like the queue that fills it.
  static NKImageCache* const shared = [] {
    auto* cache = new NKImageCache();
    cache->emptyOnMemoryWarning(platform::NotificationCenter::defaultCenter());
    return cache;
  }();
  return *shared;
}

NKImageCache::NKImageCache(size_t totalCostLimit) : totalCostLimit_(totalCostLimit) {}

NKImageCache::~NKImageCache() {
  if (center_) center_->removeObserver(observer_);
}

void NKImageCache::emptyOnMemoryWarning(platform::NotificationCenter& center) {
  if (center_) center_->removeObserver(observer_);
  center_ = &center;
  observer_ = center.addObserver(platform::Application::kDidReceiveMemoryWarningNotification, nullptr,
                                 [this](const platform::Notification&) { removeAllObjects(); });
}

std::string NKImageCache::keyForRequest(const NKURLRequest& request) {
  auto url = platform::Url::parse(request.URL);
  return url ? url->absoluteString() : std::string();
}

std::shared_ptr<const Image> NKImageCache::cachedImageForRequest(const NKURLRequest& request) {
  if (request.cachePolicy == kReloadIgnoringLocalCacheData ||
      request.cachePolicy == kReloadIgnoringLocalAndRemoteCacheData) {
    return nullptr;
  }
  const std::string key = keyForRequest(request);
  if (key.empty()) return nullptr;
  std::lock_guard lock(mutex_);
  auto found = index_.find(key);
  if (found == index_.end()) return nullptr;
  entries_.splice(entries_.begin(), entries_, found->second);
  return found->second->second;
}

void NKImageCache::cacheImage(std::shared_ptr<const Image> image, const NKURLRequest& request) {
  const std::string key = keyForRequest(request);
  if (!image || key.empty()) return;
  std::lock_guard lock(mutex_);
  if (auto found = index_.find(key); found != index_.end()) {
    totalCost_ -= found->second->second->byteCost();
    entries_.erase(found->second);
    index_.erase(found);
  }
  totalCost_ += image->byteCost();
  entries_.emplace_front(key, std::move(image));
  index_[key] = entries_.begin();
  evictToLimit();
}

void NKImageCache::evictToLimit() {
  while (totalCost_ > totalCostLimit_ && !entries_.empty()) {
    totalCost_ -= entries_.back().second->byteCost();
    index_.erase(entries_.back().first);
    entries_.pop_back();
  }
}

void NKImageCache::removeAllObjects() {
  std::lock_guard lock(mutex_);
  entries_.clear();
  index_.clear();
  totalCost_ = 0;
}

size_t NKImageCache::count() const {
  std::lock_guard lock(mutex_);
  return entries_.size();
}

size_t NKImageCache::totalCost() const {
  std::lock_guard lock(mutex_);
  return totalCost_;
}

}  // namespace quillet::http
