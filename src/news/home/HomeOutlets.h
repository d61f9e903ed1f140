#pragma once

#include <memory>
#include <vector>

#include "news/player/InlinePlayerView.h"
#include "platform/ui/Button.h"
#include "platform/ui/CollectionView.h"
#include "platform/ui/ImageView.h"
#include "platform/ui/Label.h"
#include "platform/ui/Switch.h"
#include "platform/ui/TableView.h"
#include "platform/ui/TextView.h"
#include "platform/ui/ViewController.h"

namespace quillet::news {

// The views of the feed screen, as its storyboard lays them out: the header
// bar with the feed title and the menu, reload and options buttons; the
// swipe area with the card (title, body, posted-by line, picture, video
// area with its thumbnail and play button, inline player, full-story
// button); the share panel; the menu panel and the options panel with their
// tables and switches; the decorative collection. Every view is an outlet
// of the screen under its own name and has its frame in the screen's size. Made once per screen; main thread.
struct HomeOutlets {
  explicit HomeOutlets(platform::ViewController& screen);
  // The frames of the screen's layout for a screen of `width` x `height` points.
  void layOut(double width, double height);

  std::shared_ptr<platform::View> NavView;
  std::shared_ptr<platform::Label> lblCategoryTitle;
  std::shared_ptr<platform::Button> btnMenu;
  std::shared_ptr<platform::Button> btnRefresh;
  std::shared_ptr<platform::Button> btnOption;

  std::shared_ptr<platform::View> swipeView;
  std::shared_ptr<platform::Label> lblNewsTitle;
  std::shared_ptr<platform::TextView> txtViewDetailNews;
  std::shared_ptr<platform::Label> lblPostedBy;
  std::shared_ptr<platform::ImageView> imgNews;
  std::shared_ptr<platform::View> videoView;
  std::shared_ptr<platform::ImageView> imgThumbnailVideo;
  std::shared_ptr<platform::Button> btnPlayVideo;
  std::shared_ptr<platform::View> videoPlayerView;  // the video player's view, in videoView while it plays
  std::shared_ptr<InlinePlayerView> playerView;
  std::shared_ptr<platform::Button> btnFullStory;
  std::shared_ptr<platform::Button> btnShare;
  std::shared_ptr<platform::Button> btnLetGo;
  std::shared_ptr<platform::View> shareView;
  std::vector<std::shared_ptr<platform::Button>> shareTypeButtons;  // in shareView, tags 1 to 5

  std::shared_ptr<platform::View> menuView;
  std::shared_ptr<platform::TableView> tblMenu;
  std::shared_ptr<platform::Button> btnHideMenu;

  std::shared_ptr<platform::View> optionView;
  std::shared_ptr<platform::Label> lblOption;
  std::shared_ptr<platform::TableView> tblOption;
  std::shared_ptr<platform::Button> btnHideOption;
  std::shared_ptr<platform::Label> lblMode;
  std::shared_ptr<platform::Switch> switchNightMode;
  std::shared_ptr<platform::Label> lblHD;
  std::shared_ptr<platform::Switch> switchHDImage;
  std::shared_ptr<platform::Label> lblNotification;
  std::shared_ptr<platform::Switch> switchNotification;

  std::shared_ptr<platform::CollectionView> collectionViewNews;
  std::shared_ptr<platform::Label> lblCollection;
};

}  // namespace quillet::news
