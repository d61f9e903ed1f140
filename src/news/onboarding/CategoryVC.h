#pragma once

#include <memory>
#include <string>

#include "news/api/WebmanagerDelegate.h"
#include "news/app/AppEnvironment.h"
#include "platform/ui/Button.h"
#include "platform/ui/Label.h"
#include "platform/ui/TableView.h"
#include "platform/ui/TableViewDataSource.h"
#include "platform/ui/ViewController.h"

namespace quillet::news {

// Onboarding, shown once after the first launch's splash: the reader checks
// favourite categories (from "getAllCategory"), Next registers the device
// with "addUser" under them ("7,3" in the order of checking), stores the
// returned "UserID" and pushes the feed. The check box image on a row is the
// only record of whether it is checked, so a reused row shows the mark of
// the row it showed before.
//
// Made by the storyboard with std::make_shared; requests hold it until they
// answer. Main thread only.
class CategoryVC : public platform::ViewController, public WebmanagerDelegate, public platform::TableViewDataSource {
 public:
  static constexpr int kVisibleRows = 7;

  explicit CategoryVC(AppEnvironment environment);

  void showCategorySuccess(const platform::Value& reply);
  void showCategoryFail(const platform::Value& reply);
  void checkboxTapped(platform::Button& sender);
  void btnNext();
  void addUserSuccess(const platform::Value& reply);
  void addUserFail(const platform::Value& reply);

  const platform::Value& arrCategoryName() const { return arrCategoryName_; }
  const platform::Value& arrID() const { return arrID_; }

  // TableViewDataSource.
  int numberOfRowsInSection(platform::TableView& tableView, int section) override;
  std::shared_ptr<platform::TableViewCell> cellForRowAtIndexPath(platform::TableView& tableView,
                                                                 const platform::IndexPath& indexPath) override;

  // WebmanagerDelegate.
  bool respondsToOperation(const std::string& name) const override;
  void performOperation(const std::string& name, const platform::Value& reply) override;

 protected:
  void viewDidLoad() override;

 private:
  std::shared_ptr<WebmanagerDelegate> requestDelegate();

  AppEnvironment environment_;
  std::shared_ptr<platform::TableView> tableCategory_;
  std::shared_ptr<platform::Label> lblTitle_;
  std::shared_ptr<platform::Label> lbl1_;
  std::shared_ptr<platform::Button> btnNext_;
  platform::Value arrCategoryName_ = platform::Value::Array{};
  platform::Value arrCategoryIcons_ = platform::Value::Array{};  // made, not used
  platform::Value arrID_ = platform::Value::Array{};
};

}  // namespace quillet::news
