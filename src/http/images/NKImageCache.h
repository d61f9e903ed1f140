#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

#include "http/serialization/NKURLRequest.h"
#include "platform/image/Image.h"
#include "platform/notifications/NotificationCenter.h"

namespace quillet::http {

// Images in memory by the absolute text of their request's URL. When the
// images held cost more than totalCostLimit bytes (pixels, or encoded bytes
// for an image not decoded), the least recently used go first. Thread-safe.
class NKImageCache {
 public:
  static constexpr size_t kDefaultTotalCostLimit = size_t{64} << 20;
  // Request cache policies that bypass this cache: ignore local data; ignore local and remote data.
  static constexpr int kReloadIgnoringLocalCacheData = 1;
  static constexpr int kReloadIgnoringLocalAndRemoteCacheData = 4;

  // The process-wide cache, made on first use; it empties itself when the
  // default centre posts the application's memory warning.
  static NKImageCache& sharedImageCache();

  explicit NKImageCache(size_t totalCostLimit = kDefaultTotalCostLimit);
  ~NKImageCache();
  NKImageCache(const NKImageCache&) = delete;
  NKImageCache& operator=(const NKImageCache&) = delete;

  // Null for a miss: always for the cache policies 1 and 4, and for a request without a valid URL.
  std::shared_ptr<const platform::Image> cachedImageForRequest(const NKURLRequest& request);
  // Stores under the request's URL when both are present; an image dearer
  // than the whole limit is not kept.
  void cacheImage(std::shared_ptr<const platform::Image> image, const NKURLRequest& request);
  void removeAllObjects();
  size_t count() const;
  size_t totalCost() const;

  // Empties this cache whenever `center` posts the memory warning; the
  // observer is removed when the cache goes, so `center` must outlive it.
  void emptyOnMemoryWarning(platform::NotificationCenter& center);

 private:
  using Entry = std::pair<std::string, std::shared_ptr<const platform::Image>>;
  static std::string keyForRequest(const NKURLRequest& request);
  void evictToLimit();  // under mutex_

  const size_t totalCostLimit_;
  mutable std::mutex mutex_;
  std::list<Entry> entries_;  // most recently used first
  std::unordered_map<std::string, std::list<Entry>::iterator> index_;
  size_t totalCost_ = 0;
  platform::NotificationCenter* center_ = nullptr;
  platform::NotificationCenter::ObserverToken observer_ = 0;
};

}  // namespace quillet::http
