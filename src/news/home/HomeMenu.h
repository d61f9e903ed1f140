#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/ui/TableViewDataSource.h"
#include "platform/ui/TableViewDelegate.h"
#include "platform/value/Value.h"

namespace quillet::news {

class HomeVC;

// The feed screen's two panels and its settings. The side menu picks a feed
// or a category (collapsed: six feeds and "More"; expanded: the categories
// from "getAllCategory" and "Less"); the options panel holds the app's pages
// and the night, HD and notification switches. One table data source serves
// both tables and `strSETTableType` picks the list: "Menu" the menu,
// anything else (null too, before a panel opened) the options.
//
// Owned by its HomeVC (shared, since the tables hold their data source
// weakly) and holds the screen by reference. Main thread only.
class HomeMenu : public platform::TableViewDataSource,
                 public platform::TableViewDelegate,
                 public std::enable_shared_from_this<HomeMenu> {
 public:
  static constexpr const char* kStoreLink = "https://apps.quillet.test/app/quillet/id1093";
  static constexpr int kCollapsedRows = 6;

  explicit HomeMenu(HomeVC& home);

  // The operation names the menu answers to as a request delegate.
  static bool answers(const std::string& name);
  void performOperation(const std::string& name, const platform::Value& reply);

  // Screen start: switch and button actions, the tables' source, the options rows.
  void connectSwitches();
  void buildSettingsList();

  void btnMenuTapped();
  void btnHideMenu();
  void btnOptionTapped();
  void btnHideOption();
  void showMenuCategorySuccess(const platform::Value& reply);
  void showMenuCategoryFail(const platform::Value& reply);
  void termsView();
  void changeModeSwitch(bool on);
  void changeImageSwitch(bool on);
  void changeNotificationSwitch(bool on);

  // TableViewDataSource / TableViewDelegate.
  int numberOfRowsInSection(platform::TableView& tableView, int section) override;
  std::shared_ptr<platform::TableViewCell> cellForRowAtIndexPath(platform::TableView& tableView,
                                                                 const platform::IndexPath& indexPath) override;
  void didSelectRowAtIndexPath(platform::TableView& tableView, const platform::IndexPath& indexPath) override;

  const std::optional<std::string>& strSETTableType() const { return strSETTableType_; }
  const platform::Value& arrMenuList() const { return arrMenuList_; }
  const platform::Value& arrMenuIcons() const { return arrMenuIcons_; }
  const platform::Value& arrCatID() const { return arrCatID_; }
  const platform::Value& arrSettingsList() const { return arrSettingsList_; }
  bool flag() const { return flag_; }
  void setFlag(bool flag) { flag_ = flag; }
  const std::string& strTitle() const { return strTitle_; }
  // True while a panel is on show (not hidden and not faded out).
  bool isMenuOpen() const;
  bool isOptionsOpen() const;

 private:
  // The menu rows, collapsed; with `withMore` false only the six feeds.
  void buildMenuList(bool withMore);
  void selectMenuRow(int row);
  void selectOptionRow(int row);
  void openCategory(int row);
  void showLocalList(const char* title, const char* which, bool setBookmarkMode);
  void setHeaderButtonsHidden(bool hidden);
  void presentScreen(const char* identifier);

  HomeVC& home_;
  std::optional<std::string> strSETTableType_;
  platform::Value arrMenuList_ = platform::Value::Array{};
  platform::Value arrMenuIcons_ = platform::Value::Array{};
  platform::Value arrCatID_ = platform::Value::Array{};
  bool flag_ = false;
  platform::Value arrSettingsList_ = platform::Value::Array{};
  platform::Value arrSettingsIcon_ = platform::Value::Array{};
  std::string strTitle_;
};

}  // namespace quillet::news
