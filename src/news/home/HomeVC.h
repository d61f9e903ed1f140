#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "news/api/WebmanagerDelegate.h"
#include "news/app/AppEnvironment.h"
#include "news/card/CardVideo.h"
#include "news/card/NewsCard.h"
#include "news/home/HomeOutlets.h"
#include "news/store/NewsStore.h"
#include "platform/ui/CollectionViewDataSource.h"
#include "platform/ui/ViewController.h"

namespace quillet::news {

class HomeMenu;
class HomeSharing;

// The feed screen: one news card at a time out of `arrNews`, the feed's name
// in the title line, swipes that step through the list, a tap on the title
// that toggles the bookmark, a refresh, and the menu and options panels
// (HomeMenu). Loads go through Webmanager with this screen as the delegate
// and answer on "showNewsSuccess:" / "showNewsFail:"; the local lists come
// from the news store at once.
//
// Faults kept as the app has them: a pending "NewsID" that is not in
// `arrNewsID`, a tap on the title or the image switch with an empty list
// each read the list out of range and throw std::out_of_range, which ends
// the program.
//
// Made by the storyboard with std::make_shared; a request holds the screen
// until its reply has been handled. Main thread only.
class HomeVC : public platform::ViewController, public WebmanagerDelegate {
 public:
  // The decorating slide of the card on a swipe.
  static constexpr double kSlideSeconds = 0.5;
  explicit HomeVC(AppEnvironment environment);
  ~HomeVC() override;

  // Feed loads: each sets `newsType` and sends its request.
  void myFeedNews();
  void categoryNews();
  void mostPopularNews();
  void featuredNews();
  // Replies of the loads.
  void showNewsSuccess(const platform::Value& reply);
  void showNewsFail(const platform::Value& reply);
  // Clears the card; the list, `count` and the mode stay.
  void noNews();
  // Draws the card at `count` and marks it read, here and on the server.
  void showNews();
  // The local lists: "Bookmark" or "Unread" into `arrNews`.
  void selectRecordFromDB(const std::string& which);

  // Gestures and buttons.
  void btnRefresh();
  void handleSwipe(platform::SwipeDirection direction);
  void gestureHandlerMethod();
  void btnPlayVideo();
  void btnFullStory();
  void generateThumbnail();
  void itemDidFinishPlaying();

  // Colours of the day and night modes on the card's texts and background.
  void applyMode(bool night);
  void showToast(const std::string& text);

  // State, as fields of the screen.
  const std::string& newsType() const { return newsType_; }
  void setNewsType(std::string type) { newsType_ = std::move(type); }
  const std::string& categoryID() const { return categoryID_; }
  void setCategoryID(std::string id) { categoryID_ = std::move(id); }
  const platform::Value& arrNews() const { return arrNews_; }
  int32_t count() const { return count_; }
  void setCount(int32_t count) { count_ = count; }
  const platform::Value& arrNewsID() const { return arrNewsID_; }
  bool bookmark() const { return bookmark_; }
  const std::string& strMode() const { return strMode_; }
  void setStrMode(std::string mode) { strMode_ = std::move(mode); }
  const std::string& strImageType() const { return strImageType_; }
  void setStrImageType(std::string type) { strImageType_ = std::move(type); }
  const std::string& strLink() const { return strLink_; }
  const std::string& videoURL() const { return videoURL_; }
  // Set by the left-to-right slide; read by nothing.
  double angleRatio() const { return angleRatio_; }
  // How many cards showNews has drawn (each also counts on the server).
  int64_t showCount() const { return showCount_; }

  HomeOutlets& outlets() { return *outlets_; }
  HomeMenu& menu() { return *menu_; }
  // The share sheet, the share panel and the mail (imageScreenshot, documentInteractionController).
  HomeSharing& sharing() { return *sharing_; }
  NewsStore& store() { return store_; }
  const AppEnvironment& environment() const { return environment_; }
  // This screen as the delegate of its requests (keeps it alive while they run).
  std::shared_ptr<WebmanagerDelegate> requestDelegate();

  // WebmanagerDelegate.
  bool respondsToOperation(const std::string& name) const override;
  void performOperation(const std::string& name, const platform::Value& reply) override;

 protected:
  void viewDidLoad() override;
  void viewWillAppear(bool animated) override;

 private:
  void requestFeed(const char* type, const std::string& method, const platform::Value& parameters);
  void showCard(const NewsCardContent& card);
  void viewSlideInFromRightToLeft(platform::View& view);
  void viewSlideInFromLeftToRight(platform::View& view);
  void readImageType();
  void setCardButtonsHidden(bool hidden);

  AppEnvironment environment_;
  NewsStore store_;
  std::unique_ptr<HomeOutlets> outlets_;
  std::shared_ptr<HomeMenu> menu_;
  std::shared_ptr<HomeSharing> sharing_;
  std::shared_ptr<platform::CollectionViewDataSource> collectionSource_;
  std::unique_ptr<CardVideo> video_;

  std::string newsType_;
  std::string categoryID_;
  platform::Value arrNews_ = platform::Value::Array{};
  int32_t count_ = 0;
  platform::Value arrNewsID_ = platform::Value::Array{};
  bool bookmark_ = false;
  std::string strMode_;
  std::string strImageType_;
  std::string strLink_;
  std::string videoURL_;
  double angleRatio_ = 0, rotationX_ = 0, rotationY_ = 0, rotationZ_ = 0, translateX_ = 0, translateY_ = 0;
  int64_t showCount_ = 0;
};

}  // namespace quillet::news
