#include "news/home/HomeOutlets.h"

#include <string>
#include <utility>

#include "news/support/ScaledFont.h"

namespace quillet::news {

namespace {

// Makes a view of type T named `name`, places it in `parent` and registers it as an outlet.
template <class T>
std::shared_ptr<T> place(platform::ViewController& screen, const std::shared_ptr<platform::View>& parent,
                         const char* name) {
  auto view = std::make_shared<T>(name);
  parent->addSubview(view);
  screen.registerOutlet(name, view);
  return view;
}

std::shared_ptr<platform::Button> button(platform::ViewController& screen,
                                         const std::shared_ptr<platform::View>& parent, const char* name,
                                         const char* title) {
  auto made = place<platform::Button>(screen, parent, name);
  made->setTitle(title);
  return made;
}

}  // namespace

HomeOutlets::HomeOutlets(platform::ViewController& screen) {
  const std::shared_ptr<platform::View>& root = screen.view();
  using platform::Button;
  using platform::ImageView;
  using platform::Label;
  using platform::View;

  NavView = place<View>(screen, root, "NavView");
  lblCategoryTitle = place<Label>(screen, NavView, "lblCategoryTitle");
  btnMenu = button(screen, NavView, "btnMenu", "Menu");
  btnRefresh = button(screen, NavView, "btnRefresh", "Reload");
  btnOption = button(screen, NavView, "btnOption", "Options");

  swipeView = place<View>(screen, root, "swipeView");
  lblNewsTitle = place<Label>(screen, swipeView, "lblNewsTitle");
  lblNewsTitle->setNumberOfLines(0);
  txtViewDetailNews = place<platform::TextView>(screen, swipeView, "txtViewDetailNews");
  txtViewDetailNews->setEditable(false);
  lblPostedBy = place<Label>(screen, swipeView, "lblPostedBy");
  imgNews = place<ImageView>(screen, swipeView, "imgNews");
  videoView = place<View>(screen, swipeView, "videoView");
  imgThumbnailVideo = place<ImageView>(screen, videoView, "imgThumbnailVideo");
  btnPlayVideo = button(screen, videoView, "btnPlayVideo", "Play");
  btnPlayVideo->setImageNamed("play");
  videoPlayerView = std::make_shared<View>("videoPlayerView");
  playerView = place<InlinePlayerView>(screen, swipeView, "playerView");
  btnFullStory = button(screen, swipeView, "btnFullStory", "Full Story");

  btnShare = button(screen, root, "btnShare", "Share");
  btnLetGo = button(screen, root, "btnLetGo", "Let Go");
  shareView = place<View>(screen, root, "shareView");
  for (int tag = 1; tag <= 5; ++tag) {
    const std::string name = "btnShareType" + std::to_string(tag);
    auto target = button(screen, shareView, name.c_str(), name.c_str());
    target->setTag(tag);
    shareTypeButtons.push_back(target);
  }

  menuView = place<View>(screen, root, "menuView");
  tblMenu = place<platform::TableView>(screen, menuView, "tblMenu");
  btnHideMenu = button(screen, menuView, "btnHideMenu", "Close");

  optionView = place<View>(screen, root, "optionView");
  lblOption = place<Label>(screen, optionView, "lblOption");
  lblOption->setText("Options");
  tblOption = place<platform::TableView>(screen, optionView, "tblOption");
  btnHideOption = button(screen, optionView, "btnHideOption", "Close");
  lblMode = place<Label>(screen, optionView, "lblMode");
  lblMode->setText("Night Mode");
  switchNightMode = place<platform::Switch>(screen, optionView, "switchNightMode");
  lblHD = place<Label>(screen, optionView, "lblHD");
  lblHD->setText("HD Images");
  switchHDImage = place<platform::Switch>(screen, optionView, "switchHDImage");
  lblNotification = place<Label>(screen, optionView, "lblNotification");
  lblNotification->setText("Notifications");
  switchNotification = place<platform::Switch>(screen, optionView, "switchNotification");
  switchNotification->setOn(true);  // as the screen's resource sets it; never stored

  collectionViewNews = place<platform::CollectionView>(screen, root, "collectionViewNews");
  lblCollection = place<Label>(screen, root, "lblCollection");

  // The phone's fonts: style and size scaled by the screen (a tablet keeps the resource's).
  if (ScaledFont::screensSetFonts()) {
    auto font = [](int style, double size) { return ScaledFont::scaledSystemFontWithStyle(style, size); };
    lblNewsTitle->setFont(font(9, 20));
    txtViewDetailNews->setFont(font(7, 16));
    lblPostedBy->setFont(font(7, 10));
    btnFullStory->setFont(font(7, 10));
    for (const auto& label : {lblCategoryTitle, lblOption, lblCollection}) label->setFont(font(9, 17));
    for (const auto& label : {lblHD, lblMode, lblNotification}) label->setFont(font(7, 16));
  }

  const platform::Rect bounds = root->frame().value_or(platform::Rect{});
  layOut(bounds.width, bounds.height);
}

void HomeOutlets::layOut(double w, double h) {
  using platform::Rect;
  constexpr double kBar = 64, kStatus = 20, kButtons = 50, kMargin = 12;
  NavView->setFrame(Rect{0, 0, w, kBar});
  btnMenu->setFrame(Rect{0, kStatus, 60, kBar - kStatus});
  lblCategoryTitle->setFrame(Rect{60, kStatus, w - 200, kBar - kStatus});
  btnRefresh->setFrame(Rect{w - 140, kStatus, 65, kBar - kStatus});
  btnOption->setFrame(Rect{w - 75, kStatus, 75, kBar - kStatus});

  const double cardHeight = h - kBar - kButtons;
  const double media = w * 0.6;
  swipeView->setFrame(Rect{0, kBar, w, cardHeight});
  for (platform::View* area :
       {static_cast<platform::View*>(imgNews.get()), videoView.get(), static_cast<platform::View*>(playerView.get())}) {
    area->setFrame(Rect{0, 0, w, media});
  }
  imgThumbnailVideo->setFrame(Rect{0, 0, w, media});
  btnPlayVideo->setFrame(Rect{w / 2 - 30, media / 2 - 30, 60, 60});
  lblNewsTitle->setFrame(Rect{kMargin, media + 8, w - 2 * kMargin, 56});
  lblPostedBy->setFrame(Rect{kMargin, media + 66, w - 2 * kMargin, 18});
  txtViewDetailNews->setFrame(Rect{kMargin, media + 88, w - 2 * kMargin, cardHeight - media - 128});
  btnFullStory->setFrame(Rect{w - 112, cardHeight - 36, 100, 30});

  btnShare->setFrame(Rect{0, h - kButtons, w / 2, kButtons});
  btnLetGo->setFrame(Rect{w / 2, h - kButtons, w / 2, kButtons});
  shareView->setFrame(Rect{0, h - kButtons - 70, w, 70});
  const double target = w / static_cast<double>(shareTypeButtons.size());
  for (size_t i = 0; i < shareTypeButtons.size(); ++i) {
    shareTypeButtons[i]->setFrame(Rect{target * static_cast<double>(i), 0, target, 70});
  }

  menuView->setFrame(Rect{0, 0, w, h});
  tblMenu->setFrame(Rect{0, kBar, w * 0.75, h - kBar});
  btnHideMenu->setFrame(Rect{w * 0.75, kBar, w * 0.25, h - kBar});
  optionView->setFrame(Rect{0, 0, w, h});
  lblOption->setFrame(Rect{0, kStatus, w, kBar - kStatus});
  btnHideOption->setFrame(Rect{w - 70, kStatus, 60, kBar - kStatus});
  tblOption->setFrame(Rect{0, kBar, w, 260});
  const std::pair<std::shared_ptr<platform::Label>, std::shared_ptr<platform::Switch>> settings[] = {
      {lblMode, switchNightMode}, {lblHD, switchHDImage}, {lblNotification, switchNotification}};
  double y = kBar + 276;
  for (const auto& [label, toggle] : settings) {
    label->setFrame(Rect{16, y, w - 100, 31});
    toggle->setFrame(Rect{w - 67, y, 51, 31});
    y += 40;
  }
}

}  // namespace quillet::news
