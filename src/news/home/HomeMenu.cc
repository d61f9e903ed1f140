#include "news/home/HomeMenu.h"

#include <array>
#include <utility>

#include "http/images/NKImageViewLoading.h"
#include "news/api/Webmanager.h"
#include "news/app/StoryLinkReceiver.h"
#include "news/home/HomeMenuCells.h"
#include "news/home/HomeSharing.h"
#include "news/home/HomeVC.h"
#include "news/store/NewsItemAt.h"
#include "platform/log/Log.h"
#include "platform/ui/Application.h"
#include "platform/ui/NavigationController.h"
#include "platform/ui/Storyboard.h"
#include "platform/ui/ViewAnimation.h"
#include "platform/value/Format.h"

namespace quillet::news {

using platform::Value;

namespace {

constexpr const char* kCategorySuccess = "showMenuCategorySuccess:";
constexpr const char* kCategoryFail = "showMenuCategoryFail:";
constexpr double kFadeSeconds = 1.0;
constexpr int kNotificationTypes = 7;

struct Row {
  const char* label;
  const char* icon;
};

constexpr std::array<Row, 7> kMenuRows = {{{"My Feed", "MyFeed"},
                                           {"All News", "AllNews"},
                                           {"Featured News", "Featured"},
                                           {"Most Popular", "Popular"},
                                           {"Unread", "Unread"},
                                           {"Bookmarks", "Bookmark"},
                                           {"More", "More"}}};

constexpr std::array<Row, 5> kOptionRows = {{{"Let Go", "LetsGo"},
                                             {"Rate Quillet", "Popular"},
                                             {"Feedback", "Feedback"},
                                             {"Terms and Conditions", "AllNews"},
                                             {"Privacy Policy", "Lock"}}};

std::string text(const Value& value) { return platform::format("%@", value); }

}  // namespace

HomeMenu::HomeMenu(HomeVC& home) : home_(home) {}

bool HomeMenu::answers(const std::string& name) { return name == kCategorySuccess || name == kCategoryFail; }

void HomeMenu::performOperation(const std::string& name, const Value& reply) {
  if (name == kCategorySuccess) showMenuCategorySuccess(reply);
  if (name == kCategoryFail) showMenuCategoryFail(reply);
}

void HomeMenu::connectSwitches() {
  HomeOutlets& o = home_.outlets();
  o.switchNightMode->setAction([this](platform::Switch& sender) { changeModeSwitch(sender.isOn()); });
  o.switchHDImage->setAction([this](platform::Switch& sender) { changeImageSwitch(sender.isOn()); });
  o.switchNotification->setAction([this](platform::Switch& sender) { changeNotificationSwitch(sender.isOn()); });
  o.btnMenu->setAction([this](platform::Button&) { btnMenuTapped(); });
  o.btnHideMenu->setAction([this](platform::Button&) { btnHideMenu(); });
  o.btnOption->setAction([this](platform::Button&) { btnOptionTapped(); });
  o.btnHideOption->setAction([this](platform::Button&) { btnHideOption(); });
  for (const auto& table : {o.tblMenu, o.tblOption}) {
    table->setDataSource(weak_from_this());
    table->setDelegate(weak_from_this());
  }
}

void HomeMenu::buildSettingsList() {
  arrSettingsList_ = Value::Array{};
  arrSettingsIcon_ = Value::Array{};
  for (const Row& row : kOptionRows) {
    arrSettingsList_.append(Value(row.label));
    arrSettingsIcon_.append(Value(row.icon));
  }
}

void HomeMenu::buildMenuList(bool withMore) {
  arrMenuList_ = Value::Array{};
  arrMenuIcons_ = Value::Array{};
  for (size_t i = 0; i < kMenuRows.size(); ++i) {
    if (!withMore && i >= static_cast<size_t>(kCollapsedRows)) break;
    arrMenuList_.append(Value(kMenuRows[i].label));
    arrMenuIcons_.append(Value(kMenuRows[i].icon));
  }
}

// --- panels ---

void HomeMenu::setHeaderButtonsHidden(bool hidden) {
  HomeOutlets& o = home_.outlets();
  for (const auto& button : {o.btnOption, o.btnRefresh, o.btnMenu}) button->setHidden(hidden);
}

void HomeMenu::btnMenuTapped() {
  HomeOutlets& o = home_.outlets();
  strSETTableType_ = "Menu";
  flag_ = false;
  o.menuView->setHidden(false);
  setHeaderButtonsHidden(true);
  o.menuView->setAlpha(0);
  platform::ViewAnimation::animateWithDuration(kFadeSeconds, [&o] { o.menuView->setAlpha(1); });
  buildMenuList(true);
  o.tblMenu->reloadData();
}

void HomeMenu::btnHideMenu() {
  HomeOutlets& o = home_.outlets();
  platform::ViewAnimation::animateWithDuration(kFadeSeconds, [&o] { o.menuView->setAlpha(0); });
  setHeaderButtonsHidden(false);
  o.optionView->setHidden(true);
}

void HomeMenu::btnOptionTapped() {
  HomeOutlets& o = home_.outlets();
  strSETTableType_ = "Option";
  setHeaderButtonsHidden(true);
  o.optionView->setHidden(false);
  o.optionView->setAlpha(0);
  platform::ViewAnimation::animateWithDuration(kFadeSeconds, [&o] { o.optionView->setAlpha(1); });
}

void HomeMenu::btnHideOption() {
  HomeOutlets& o = home_.outlets();
  platform::ViewAnimation::animateWithDuration(kFadeSeconds, [&o] { o.optionView->setAlpha(0); });
  setHeaderButtonsHidden(false);
}

bool HomeMenu::isMenuOpen() const {
  const auto& panel = home_.outlets().menuView;
  return !panel->isHidden() && panel->alpha() > 0;
}

bool HomeMenu::isOptionsOpen() const {
  const auto& panel = home_.outlets().optionView;
  return !panel->isHidden() && panel->alpha() > 0;
}

// --- the table ---

int HomeMenu::numberOfRowsInSection(platform::TableView&, int) {
  const Value& list = strSETTableType_ == "Menu" ? arrMenuList_ : arrSettingsList_;
  return static_cast<int>(list.count());
}

std::shared_ptr<platform::TableViewCell> HomeMenu::cellForRowAtIndexPath(platform::TableView& tableView,
                                                                         const platform::IndexPath& indexPath) {
  const size_t row = static_cast<size_t>(indexPath.row);
  if (strSETTableType_ == "Menu") {
    auto cell = std::dynamic_pointer_cast<HomeMenuTableViewCell>(
        tableView.dequeueReusableCellWithIdentifier(HomeMenuTableViewCell::kIdentifier));
    if (!cell) cell = std::make_shared<HomeMenuTableViewCell>();
    cell->lblNewsType->setText(text(arrMenuList_.at(row)));
    const std::string icon = text(arrMenuIcons_.at(row));
    if (icon.find("http") != std::string::npos) {
      http::setImageWithURL(*cell->imgNewsType, icon, "categoryplaceholder.png");
    } else {
      cell->imgNewsType->setImageNamed(icon);
    }
    cell->imgNewsType->setCornerRadius(cell->imgNewsType->frame().value_or(platform::Rect{0, 0, 30, 30}).width / 2);
    return cell;
  }
  auto cell = std::dynamic_pointer_cast<OptionsTableViewCell>(
      tableView.dequeueReusableCellWithIdentifier(OptionsTableViewCell::kIdentifier));
  if (!cell) cell = std::make_shared<OptionsTableViewCell>();
  cell->lblOptionType->setText(text(arrSettingsList_.at(row)));
  cell->imgOptionType->setImageNamed(text(arrSettingsIcon_.at(row)));
  return cell;
}

void HomeMenu::didSelectRowAtIndexPath(platform::TableView& tableView, const platform::IndexPath& indexPath) {
  if (strSETTableType_ == "Menu") {
    selectMenuRow(indexPath.row);
    return;
  }
  selectOptionRow(indexPath.row);
  tableView.deselectRowAtIndexPath(indexPath, true);
}

void HomeMenu::selectMenuRow(int row) {
  HomeOutlets& o = home_.outlets();
  switch (row) {
    case 0:
      o.lblCategoryTitle->setText("My Feed");
      home_.myFeedNews();
      btnHideMenu();
      return;
    case 1:
      o.lblCategoryTitle->setText("All News");
      home_.setNewsType("MyFeed");
      home_.setCategoryID("");
      home_.categoryNews();
      btnHideMenu();
      return;
    case 2:
      o.lblCategoryTitle->setText("Featured News");
      home_.featuredNews();
      btnHideMenu();
      return;
    case 3:
      o.lblCategoryTitle->setText("Most Popular");
      home_.mostPopularNews();
      btnHideMenu();
      return;
    case 4:
      showLocalList("Unread", "Unread", false);
      return;
    case 5:
      showLocalList("Bookmarks", "Bookmark", true);
      return;
    default:
      break;
  }
  if (row == kCollapsedRows && !flag_) {
    flag_ = true;
    buildMenuList(false);
    home_.showToast("Please wait");
    Webmanager::sharedObject().sendRequestWithUrl("getAllCategory", Value(), home_.requestDelegate(), kCategorySuccess,
                                                  kCategoryFail);
    o.tblMenu->reloadData();
    return;
  }
  if (row == kCollapsedRows) {
    openCategory(row);
    return;
  }
  flag_ = false;
  if (row == static_cast<int>(arrMenuList_.count()) - 1) {
    buildMenuList(true);
    o.tblMenu->reloadData();
    return;
  }
  openCategory(row);
}

void HomeMenu::openCategory(int row) {
  flag_ = false;
  home_.outlets().lblCategoryTitle->setText(text(arrMenuList_.at(static_cast<size_t>(row))));
  home_.setCategoryID(text(newsItemAt(arrCatID_, row - kCollapsedRows)));
  home_.categoryNews();
  btnHideMenu();
}

void HomeMenu::showLocalList(const char* title, const char* which, bool setBookmarkMode) {
  home_.outlets().lblCategoryTitle->setText(title);
  if (setBookmarkMode) home_.setNewsType("Bookmark");
  home_.selectRecordFromDB(which);
  btnHideMenu();
  home_.setCount(0);
  if (home_.arrNews().count() > 0) {
    home_.showNews();
  } else {
    home_.noNews();
    home_.showToast("No news to show.");
  }
}

void HomeMenu::selectOptionRow(int row) {
  switch (row) {
    case 0:
      home_.sharing().btnTOSS();
      break;
    case 1:
      platform::Application::sharedApplication().openURL(kStoreLink);
      break;
    case 2:
      presentScreen("FeedbackViewController");
      break;
    case 3:
      strTitle_ = "Terms and Condition";
      termsView();
      break;
    case 4:
      strTitle_ = "Privacy Policy";
      termsView();
      break;
    default:
      break;
  }
}

void HomeMenu::termsView() { presentScreen("TermsConditionVC"); }

void HomeMenu::presentScreen(const char* identifier) {
  platform::Error error;
  auto storyboard = home_.storyboard();
  auto screen = storyboard ? storyboard->instantiateViewControllerWithIdentifier(identifier, &error) : nullptr;
  auto navigation = home_.navigationController();
  if (!screen || !navigation) {
    platform::Log::write(platform::format("%@ cannot be shown: %@", identifier, error.localizedDescription()));
    return;
  }
  if (auto page = std::dynamic_pointer_cast<PageTitleReceiver>(screen)) page->setStrSETTitle(strTitle_);
  navigation->presentViewController(screen, true);
}

// --- categories ---

void HomeMenu::showMenuCategorySuccess(const Value& reply) {
  const Value& result = reply["result"];
  if (result.isArray()) {
    for (const Value& category : result.arrayItems()) {
      arrMenuList_.append(category["name"]);
      arrMenuIcons_.append(category["image"]);
      arrCatID_.append(category["id"]);
    }
  } else {
    platform::Log::write(platform::format("getAllCategory: \"result\" is not a list: %@", result));
  }
  arrMenuList_.append(Value("Less"));
  arrMenuIcons_.append(Value("Less"));
  platform::Log::write(platform::format("Categories: %@", arrMenuList_));
  home_.outlets().tblMenu->reloadData();
}

void HomeMenu::showMenuCategoryFail(const Value&) { home_.showToast("Failed to show category."); }

// --- settings ---

void HomeMenu::changeModeSwitch(bool on) {
  HomeOutlets& o = home_.outlets();
  const std::string body = o.txtViewDetailNews->text();
  o.txtViewDetailNews->setText("");
  platform::Log::write(on ? "Switch is ON" : "Switch is OFF");
  const char* mode = on ? "Night" : "Day";
  home_.environment().defaults->setObject(Value(mode), "Mode");
  home_.setStrMode(mode);
  home_.applyMode(on);
  o.txtViewDetailNews->setText(body);
  home_.view()->layoutIfNeeded();
}

void HomeMenu::changeImageSwitch(bool on) {
  platform::Log::write(on ? "Switch is ON" : "Switch is OFF");
  platform::UserDefaults& defaults = *home_.environment().defaults;
  defaults.setObject(Value(on ? "HD" : "Normal"), "ImageType");
  const Value& item = newsItemAt(home_.arrNews(), home_.count());
  http::setImageWithURL(*home_.outlets().imgNews, text(item[on ? "news_image_hd" : "news_image_normal"]),
                        "Placeholder.png");
  home_.setStrImageType(defaults.stringForKey("ImageType").value_or(""));
}

void HomeMenu::changeNotificationSwitch(bool on) {
  platform::Application& application = platform::Application::sharedApplication();
  if (on) {
    application.registerUserNotificationSettings(kNotificationTypes);
    application.registerForRemoteNotifications();
  } else {
    application.unregisterForRemoteNotifications();
  }
}

}  // namespace quillet::news
