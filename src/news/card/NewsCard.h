#pragma once

#include <string>

#include "platform/ui/Color.h"
#include "platform/value/Value.h"

namespace quillet::news {

// What a card shows for one news item: a pure mapping from the item (a
// server item or a stored record), the two reading settings and the
// bookmarked ids, with no screen and no side effects. `HomeVC::showNews`
// puts the result on screen and then marks the story read.
struct NewsCardContent {
  enum class Media { Image, Video, InlineVideo, Unchanged };

  bool bookmarked = false;
  platform::Color titleColor = platform::Color::blackColor();
  std::string title;
  std::string body;
  std::string postedBy;
  std::string link;       // strLink: the source page
  std::string mediaType;  // "news_media_type" as text
  Media media = Media::Unchanged;
  std::string imageURL;   // Image: the HD or normal picture
  std::string videoURL;   // Video: "news_image_normal" carries the video
  std::string videoId;    // InlineVideo: the id found in the link, may be empty
  double barAlpha = 1.0;  // the header bar's opacity over the medium (Image 0.7, videos 1.0)
  std::string storyId;    // "id" as text, for the read mark and the server count
};

class NewsCard {
 public:
  // `strMode` "Night" gives white text (empty when no mode is stored);
  // `strImageType` "HD" picks "news_image_hd" for pictures; `bookmarkedIDs`
  // is the list of bookmarked ids as text, compared with the item's "id" as
  // the item holds it (a number never equals a text).
  static NewsCardContent make(const platform::Value& item, const std::string& strMode, const std::string& strImageType,
                              const platform::Value& bookmarkedIDs);

  // "01st Jan 2016" for "2016-01-01": the day with its suffix, then month and
  // year, in the device's locale and time zone. A date that does not fit
  // "yyyy-MM-dd" exactly gives "(null)th (null)".
  static std::string dateText(const platform::Value& createdDate);

  // The video id of a watch link ("...v=ID", ".../v/ID") or a short link
  // ("<short host>/ID"), case-insensitively; empty when none is found.
  static std::string videoIdFromLink(const std::string& link);

  // The short-link host of the video site the inline player plays from.
  static constexpr const char* kShortLinkHost = "vid.quillet.test";
};

}  // namespace quillet::news
