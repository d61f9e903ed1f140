#include "news/home/HomeVC.h"

#include <utility>

#include "http/images/NKImageViewLoading.h"
#include "news/api/Webmanager.h"
#include "news/app/AppKeys.h"
#include "news/app/StoryLinkReceiver.h"
#include "news/home/HomeMenu.h"
#include "news/home/HomeSharing.h"
#include "news/store/NewsItemAt.h"
#include "news/support/ToastView.h"
#include "platform/log/Log.h"
#include "platform/ui/CollectionViewCell.h"
#include "platform/ui/NavigationController.h"
#include "platform/ui/Storyboard.h"
#include "platform/value/Format.h"

namespace quillet::news {

using platform::Value;

namespace {

constexpr const char* kShowNewsSuccess = "showNewsSuccess:";
constexpr const char* kShowNewsFail = "showNewsFail:";
constexpr double kThumbnailDelaySeconds = 0.2;
constexpr int32_t kNotFound = -1;  // the not-found index, as 32 bits hold it

// The decorative collection: always 15 cells, holding no data.
class NewsCollectionSource : public platform::CollectionViewDataSource {
 public:
  int numberOfItemsInSection(platform::CollectionView&, int) override { return 15; }
  std::shared_ptr<platform::CollectionViewCell> cellForItemAtIndexPath(platform::CollectionView&,
                                                                       const platform::IndexPath&) override {
    return std::make_shared<platform::CollectionViewCell>("NewsCollection");
  }
};

}  // namespace

HomeVC::HomeVC(AppEnvironment environment)
    : ViewController(kHomeScreen),
      environment_(std::move(environment)),
      store_(NewsDatabaseFile(environment_.fileSystem)) {
  setTitle("My Feed");
}

HomeVC::~HomeVC() = default;

std::shared_ptr<WebmanagerDelegate> HomeVC::requestDelegate() {
  return std::shared_ptr<WebmanagerDelegate>(shared_from_this(), static_cast<WebmanagerDelegate*>(this));
}

bool HomeVC::respondsToOperation(const std::string& name) const {
  return name == kShowNewsSuccess || name == kShowNewsFail || HomeMenu::answers(name);
}

void HomeVC::performOperation(const std::string& name, const Value& reply) {
  if (name == kShowNewsSuccess) {
    showNewsSuccess(reply);
  } else if (name == kShowNewsFail) {
    showNewsFail(reply);
  } else {
    menu_->performOperation(name, reply);
  }
}

void HomeVC::viewDidLoad() {
  outlets_ = std::make_unique<HomeOutlets>(*this);
  HomeOutlets& o = *outlets_;
  video_ = std::make_unique<CardVideo>(o.imgThumbnailVideo, o.videoView, o.videoPlayerView);
  menu_ = std::make_shared<HomeMenu>(*this);
  sharing_ = std::make_shared<HomeSharing>(*this);
  count_ = 0;
  o.shareView->setHidden(true);
  menu_->connectSwitches();
  menu_->buildSettingsList();
  o.swipeView->addSwipeHandler(platform::SwipeDirection::Left, [this] { handleSwipe(platform::SwipeDirection::Left); });
  o.swipeView->addSwipeHandler(platform::SwipeDirection::Right,
                               [this] { handleSwipe(platform::SwipeDirection::Right); });
  o.menuView->setHidden(true);
  o.optionView->setHidden(true);  // the panel's state in the screen's resource

  strMode_ = environment_.defaults->stringForKey("Mode").value_or("");
  o.switchNightMode->setOn(strMode_ == "Night");
  applyMode(strMode_ == "Night");

  collectionSource_ = std::make_shared<NewsCollectionSource>();
  o.collectionViewNews->setDataSource(collectionSource_);

  myFeedNews();
  readImageType();
  bookmark_ = false;
  o.lblNewsTitle->setTapHandler([this] { gestureHandlerMethod(); });
  o.lblNewsTitle->setUserInteractionEnabled(true);
  o.btnRefresh->setAction([this](platform::Button&) { btnRefresh(); });
  o.btnPlayVideo->setAction([this](platform::Button&) { btnPlayVideo(); });
  o.btnFullStory->setAction([this](platform::Button&) { btnFullStory(); });
  sharing_->connect();
}

void HomeVC::readImageType() {
  auto stored = environment_.defaults->stringForKey("ImageType");
  strImageType_ = stored.value_or("");
  if (strImageType_ == "HD") {
    outlets_->switchHDImage->setOn(true);
  } else if (strImageType_ == "Normal") {
    outlets_->switchHDImage->setOn(false);
  } else {
    outlets_->switchHDImage->setOn(true);
    strImageType_ = "HD";  // not stored
  }
}

void HomeVC::viewWillAppear(bool) { outlets_->tblMenu->reloadData(); }

// --- loads ---

void HomeVC::requestFeed(const char* type, const std::string& method, const Value& parameters) {
  newsType_ = type;
  Webmanager::sharedObject().sendRequestWithUrl(method, parameters, requestDelegate(), kShowNewsSuccess, kShowNewsFail);
}

void HomeVC::myFeedNews() {
  const Value userID = environment_.defaults->objectForKey(kUserIDKey);
  requestFeed("MyFeed", "showNews", Value::dictionary({{"id", Value(platform::format("%@", userID))}}));
}

void HomeVC::categoryNews() {
  requestFeed("Category", "showNews", Value::dictionary({{"category_id", Value(categoryID_)}}));
}

void HomeVC::mostPopularNews() { requestFeed("MostPopular", "getMostPopularNews", Value()); }

void HomeVC::featuredNews() { requestFeed("Featured", "getFeaturedNews", Value()); }

void HomeVC::selectRecordFromDB(const std::string& which) { store_.selectRecordFromDB(which, arrNews_); }

void HomeVC::showNewsSuccess(const Value& reply) {
  count_ = 0;
  const Value& result = reply["result"];
  if (result.isArray()) {
    arrNews_ = result;
  } else {
    platform::Log::write(platform::format("showNews: \"result\" is not a list: %@", result));
    arrNews_ = Value::Array{};
  }
  for (const Value& item : arrNews_.arrayItems()) arrNewsID_.append(Value(platform::format("%@", item["id"])));

  const std::string pending = platform::format("%@", environment_.defaults->objectForKey(kNewsIDKey));
  if (!pending.empty() && pending != "(null)") {
    outlets_->lblCategoryTitle->setText("All News");
    count_ = kNotFound;
    const Value::Array& ids = arrNewsID_.arrayItems();
    for (size_t i = 0; i < ids.size(); ++i) {
      if (ids[i].isString() && ids[i].string() == pending) {
        count_ = static_cast<int32_t>(i);
        break;
      }
    }
    environment_.defaults->setObject(Value(""), kNewsIDKey);
  }

  if (arrNews_.count() > 0) {
    setCardButtonsHidden(false);
    showNews();
    store_.insertAllRecordToDB(arrNews_);
  } else {
    noNews();
    showToast("No news to show.");
  }
}

void HomeVC::showNewsFail(const Value&) {
  noNews();
  showToast("Failed to show news.");
}

void HomeVC::setCardButtonsHidden(bool hidden) {
  for (const auto& button : {outlets_->btnShare, outlets_->btnLetGo, outlets_->btnFullStory}) button->setHidden(hidden);
}

void HomeVC::noNews() {
  HomeOutlets& o = *outlets_;
  o.lblNewsTitle->setText("");
  o.lblPostedBy->setText("");
  o.txtViewDetailNews->setText("");
  o.imgNews->clearImage();
  o.imgNews->setHidden(true);
  o.videoView->setHidden(true);
  setCardButtonsHidden(true);
  o.playerView->setHidden(true);
}

// --- the card ---

void HomeVC::showNews() {
  store_.getBookmarkedID();
  Value bookmarkedIDs = Value::Array{};
  for (const Value& row : store_.arrBookmarkedID().arrayItems()) bookmarkedIDs.append(row["id"]);
  const Value& item = newsItemAt(arrNews_, count_);
  const NewsCardContent card = NewsCard::make(item, strMode_, strImageType_, bookmarkedIDs);
  ++showCount_;
  showCard(card);

  store_.setStrUpdateID(card.storyId);
  store_.updateNewsTable();
  Webmanager::sharedObject().sendRequestWithUrl("setReadCount", Value::dictionary({{"id", Value(card.storyId)}}),
                                                requestDelegate(), std::nullopt, std::nullopt);
}

void HomeVC::showCard(const NewsCardContent& card) {
  HomeOutlets& o = *outlets_;
  bookmark_ = card.bookmarked;
  o.lblNewsTitle->setTextColor(card.titleColor);
  o.txtViewDetailNews->setText(card.body);
  o.lblNewsTitle->setText(card.title);
  o.lblPostedBy->setText(card.postedBy);
  strLink_ = card.link;
  video_->pause();
  o.playerView->stopVideo();

  switch (card.media) {
    case NewsCardContent::Media::Image:
      o.NavView->setBackgroundColor(platform::Color::blackColor().withAlpha(card.barAlpha));
      o.imgThumbnailVideo->setHidden(true);
      o.videoView->setHidden(true);
      o.playerView->setHidden(true);
      o.imgNews->setHidden(false);
      http::setImageWithURL(*o.imgNews, card.imageURL, "placeholder.png");
      break;
    case NewsCardContent::Media::Video: {
      o.NavView->setBackgroundColor(platform::Color::blackColor().withAlpha(card.barAlpha));
      videoURL_ = card.videoURL;
      o.imgThumbnailVideo->setHidden(false);
      o.videoView->setHidden(false);
      o.imgNews->setHidden(true);
      o.playerView->setHidden(true);
      o.videoPlayerView->removeFromSuperview();
      // Never cancelled: it runs on whatever card is shown 0.2 s later, and holds the screen until then.
      auto self = std::static_pointer_cast<HomeVC>(shared_from_this());
      environment_.runLoop->schedule(kThumbnailDelaySeconds, [self] { self->generateThumbnail(); });
      break;
    }
    case NewsCardContent::Media::InlineVideo:
      o.NavView->setBackgroundColor(platform::Color::blackColor().withAlpha(card.barAlpha));
      o.imgThumbnailVideo->setHidden(true);
      o.videoView->setHidden(true);
      o.imgNews->setHidden(true);
      o.playerView->setHidden(false);
      o.playerView->loadWithVideoId(card.videoId, Value::dictionary({{"playsinline", Value(int64_t{1})}}));
      break;
    case NewsCardContent::Media::Unchanged:
      break;
  }
}

void HomeVC::generateThumbnail() { video_->generateThumbnail(videoURL_); }

void HomeVC::btnPlayVideo() {
  outlets_->imgThumbnailVideo->setHidden(true);
  std::weak_ptr<ViewController> weak = weak_from_this();
  const bool playing = video_->play(videoURL_, [weak] {
    if (auto self = std::static_pointer_cast<HomeVC>(weak.lock())) self->itemDidFinishPlaying();
  });
  if (!playing) showToast("Unsupported Video.");
}

void HomeVC::itemDidFinishPlaying() {
  video_->seekToStart();
  platform::Log::write("stop");
}

void HomeVC::btnFullStory() {
  platform::Error error;
  auto page = storyboard() ? storyboard()->instantiateViewControllerWithIdentifier("FullStoryVC", &error) : nullptr;
  auto navigation = navigationController();
  if (!page || !navigation) {
    platform::Log::write(platform::format("FullStoryVC cannot be shown for %@", strLink_));
    return;
  }
  if (auto receiver = std::dynamic_pointer_cast<StoryLinkReceiver>(page)) receiver->setStrURL(strLink_);
  navigation->pushViewController(page, true);
}

// --- refresh, swipes, bookmark ---

void HomeVC::btnRefresh() {
  count_ = 0;
  arrNewsID_ = Value::Array{};
  if (newsType_ == "MyFeed") {
    myFeedNews();
  } else if (newsType_ == "Featured") {
    featuredNews();
  } else if (newsType_ == "MostPopular") {
    mostPopularNews();
  } else if (newsType_ == "Category") {
    categoryNews();
  } else if (newsType_ == "UnreadNews") {
    selectRecordFromDB("Unread");
  } else if (newsType_ == "Bookmark") {
    selectRecordFromDB("Bookmark");
  } else if (newsType_ == "AllNews") {
    categoryID_.clear();
    categoryNews();
  }
  showToast("Refreshed");
}

void HomeVC::handleSwipe(platform::SwipeDirection direction) {
  const int64_t size = static_cast<int64_t>(arrNews_.count());
  if (direction == platform::SwipeDirection::Left) {
    platform::Log::write("Left Swipe");
    if (size == 0 || count_ == size - 1) return;
    count_ += 1;
    viewSlideInFromRightToLeft(*outlets_->swipeView);
    showNews();
  } else if (direction == platform::SwipeDirection::Right) {
    platform::Log::write("Right Swipe");
    if (size == 0 || count_ == 0) return;
    count_ -= 1;
    viewSlideInFromLeftToRight(*outlets_->swipeView);
    showNews();
  }
}

void HomeVC::gestureHandlerMethod() {
  if (bookmark_) {
    bookmark_ = false;
    outlets_->lblNewsTitle->setTextColor(strMode_ == "Night" ? platform::Color::whiteColor()
                                                             : platform::Color::blackColor());
    store_.deleteBookmarked(arrNews_, count_);
    showToast("Bookmark Removed");
  } else {
    bookmark_ = true;
    outlets_->lblNewsTitle->setTextColor(platform::Color::redColor());
    showToast("Bookmarked");
    store_.insertAllRecordToBookmark(arrNews_, count_);
  }
}

void HomeVC::viewSlideInFromRightToLeft(platform::View& view) {
  view.addTransition(platform::ViewTransition{"push", "fromRight", kSlideSeconds});
}

void HomeVC::viewSlideInFromLeftToRight(platform::View& view) {
  view.addTransition(platform::ViewTransition{"push", "fromLeft", kSlideSeconds});
  angleRatio_ = 0.5;
  rotationX_ = -1;
  rotationY_ = 0;
  rotationZ_ = 0;
  translateX_ = 0.25;
  translateY_ = 0;
}

// --- looks ---

void HomeVC::applyMode(bool night) {
  HomeOutlets& o = *outlets_;
  const platform::Color text = night ? platform::Color::whiteColor() : platform::Color::blackColor();
  const platform::Color background = night ? platform::Color::rgb255(50, 51, 51) : platform::Color::whiteColor();
  view()->setBackgroundColor(background);
  o.swipeView->setBackgroundColor(background);
  o.lblNewsTitle->setTextColor(text);
  o.txtViewDetailNews->setTextColor(text);
  o.lblPostedBy->setTextColor(text);
  o.btnFullStory->setTitleColor(text);
}

void HomeVC::showToast(const std::string& text) { ToastView::toastInView(view(), text); }

}  // namespace quillet::news
