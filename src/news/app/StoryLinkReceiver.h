#pragma once

#include <string>

namespace quillet::news {

// A screen that is opened on a story's source page: the feed hands it the
// link before it is shown.
class StoryLinkReceiver {
 public:
  virtual ~StoryLinkReceiver() = default;
  virtual void setStrURL(std::string url) = 0;
};

// A content page that is given its title before it is shown.
class PageTitleReceiver {
 public:
  virtual ~PageTitleReceiver() = default;
  virtual void setStrSETTitle(std::string title) = 0;
};

}  // namespace quillet::news
