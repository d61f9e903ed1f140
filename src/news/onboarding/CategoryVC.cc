#include "news/onboarding/CategoryVC.h"

#include <utility>

#include "http/images/NKImageViewLoading.h"
#include "news/api/Webmanager.h"
#include "news/app/AppKeys.h"
#include "news/onboarding/CategoryTableViewCell.h"
#include "news/store/NewsItemAt.h"
#include "news/support/ScaledFont.h"
#include "news/support/ToastView.h"
#include "platform/log/Log.h"
#include "platform/ui/NavigationController.h"
#include "platform/ui/Storyboard.h"
#include "platform/ui/ViewAnimation.h"
#include "platform/value/Format.h"

namespace quillet::news {

using platform::Value;

namespace {

constexpr const char* kCategorySuccess = "showCategorySuccess:";
constexpr const char* kCategoryFail = "showCategoryFail:";
constexpr const char* kAddUserSuccess = "addUserSuccess:";
constexpr const char* kAddUserFail = "addUserFail:";
constexpr double kCrossFadeSeconds = 0.3;

}  // namespace

CategoryVC::CategoryVC(AppEnvironment environment)
    : ViewController(kCategoryScreen), environment_(std::move(environment)) {
  setTitle("Choose Categories");
  lblTitle_ = std::make_shared<platform::Label>("lblTitle");
  lblTitle_->setText("Choose your favourite categories");
  lbl1_ = std::make_shared<platform::Label>("lbl1");
  lbl1_->setText("Pick one or more to make your feed");
  tableCategory_ = std::make_shared<platform::TableView>("tableCategory");
  tableCategory_->setVisibleRowCount(kVisibleRows);
  tableCategory_->setRowHeight(60);
  btnNext_ = std::make_shared<platform::Button>("btnNext");
  btnNext_->setTitle("Next");
  registerOutlet("lblTitle", lblTitle_);
  registerOutlet("lbl1", lbl1_);
  registerOutlet("tableCategory", tableCategory_);
  registerOutlet("btnNext", btnNext_);
}

std::shared_ptr<WebmanagerDelegate> CategoryVC::requestDelegate() {
  return std::shared_ptr<WebmanagerDelegate>(shared_from_this(), static_cast<WebmanagerDelegate*>(this));
}

bool CategoryVC::respondsToOperation(const std::string& name) const {
  return name == kCategorySuccess || name == kCategoryFail || name == kAddUserSuccess || name == kAddUserFail;
}

void CategoryVC::performOperation(const std::string& name, const Value& reply) {
  if (name == kCategorySuccess) showCategorySuccess(reply);
  if (name == kCategoryFail) showCategoryFail(reply);
  if (name == kAddUserSuccess) addUserSuccess(reply);
  if (name == kAddUserFail) addUserFail(reply);
}

void CategoryVC::viewDidLoad() {
  if (auto navigation = navigationController()) navigation->setNavigationBarHidden(true);
  environment_.defaults->setObject(Value("true"), "launch");
  if (ScaledFont::screensSetFonts()) lbl1_->setFont(ScaledFont::scaledSystemFontWithStyle(8, 16));
  arrCategoryName_ = Value::Array{};
  arrCategoryIcons_ = Value::Array{};
  arrID_ = Value::Array{};
  tableCategory_->setDataSource(std::shared_ptr<platform::TableViewDataSource>(
      shared_from_this(), static_cast<platform::TableViewDataSource*>(this)));
  btnNext_->setAction([this](platform::Button&) { btnNext(); });
  tableCategory_->setAlpha(0);
  platform::ViewAnimation::animateWithDuration(kCrossFadeSeconds, [this] { tableCategory_->setAlpha(1); });
  Webmanager::sharedObject().sendRequestWithUrl("getAllCategory", Value(), requestDelegate(), kCategorySuccess,
                                                kCategoryFail);
}

void CategoryVC::showCategorySuccess(const Value& reply) {
  const Value& result = reply["result"];
  if (result.isArray()) {
    arrCategoryName_ = result;
  } else {
    platform::Log::write(platform::format("getAllCategory: \"result\" is not a list: %@", result));
    arrCategoryName_ = Value::Array{};
  }
  tableCategory_->reloadData();
}

void CategoryVC::showCategoryFail(const Value&) {}

int CategoryVC::numberOfRowsInSection(platform::TableView&, int) { return static_cast<int>(arrCategoryName_.count()); }

std::shared_ptr<platform::TableViewCell> CategoryVC::cellForRowAtIndexPath(platform::TableView& tableView,
                                                                           const platform::IndexPath& indexPath) {
  auto cell = std::dynamic_pointer_cast<CategoryTableViewCell>(
      tableView.dequeueReusableCellWithIdentifier(CategoryTableViewCell::kIdentifier));
  if (!cell) cell = std::make_shared<CategoryTableViewCell>();
  const Value& category = arrCategoryName_.at(static_cast<size_t>(indexPath.row));
  cell->lblCategoryType->setText(platform::format("%@", category["name"]));
  http::setImageWithURL(*cell->imgCategoryType, platform::format("%@", category["image"]), "categoryplaceholder.png");
  cell->btnCheck->setTag(indexPath.row);
  cell->btnCheck->setAction([this](platform::Button& sender) { checkboxTapped(sender); });
  return cell;
}

void CategoryVC::checkboxTapped(platform::Button& sender) {
  const Value id = newsItemAt(arrCategoryName_, sender.tag())["id"];
  if (sender.imageName() == "Checked") {
    sender.setImageNamed("Unchecked");
    Value::Array kept;
    for (const Value& chosen : arrID_.arrayItems()) {
      if (!(chosen == id)) kept.push_back(chosen);
    }
    arrID_ = Value(std::move(kept));
  } else {
    sender.setImageNamed("Checked");
    arrID_.append(id);
  }
}

void CategoryVC::btnNext() {
  platform::UserDefaults& defaults = *environment_.defaults;
  const std::string deviceID = platform::format("%@", defaults.objectForKey(kDeviceIDKey));
  const std::string deviceToken = platform::format("%@", defaults.objectForKey(kDeviceTokenKey));
  std::string favCategory;
  for (const Value& id : arrID_.arrayItems()) favCategory += platform::format("%@,", id);
  if (favCategory.empty()) {
    ToastView::toastInView(view(), "Please select one or more category");
    return;
  }
  favCategory.pop_back();
  Webmanager::sharedObject().sendRequestWithUrl(
      "addUser",
      Value::dictionary(
          {{"device_id", Value(deviceID)}, {"device_token", Value(deviceToken)}, {"fav_category", Value(favCategory)}}),
      requestDelegate(), kAddUserSuccess, kAddUserFail);
}

void CategoryVC::addUserSuccess(const Value& reply) {
  environment_.defaults->setObject(Value(platform::format("%@", reply["user_id"])), kUserIDKey);
  platform::Error error;
  auto home = storyboard() ? storyboard()->instantiateViewControllerWithIdentifier(kHomeScreen, &error) : nullptr;
  auto navigation = navigationController();
  if (!home || !navigation) {
    platform::Log::write(platform::format("CategoryVC: cannot show %s: %@", kHomeScreen, error.localizedDescription()));
    return;
  }
  navigation->pushViewController(home, true);
}

void CategoryVC::addUserFail(const Value&) {}

}  // namespace quillet::news
