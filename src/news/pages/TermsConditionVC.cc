#include "news/pages/TermsConditionVC.h"

#include "news/api/Webmanager.h"
#include "news/support/ScaledFont.h"
#include "platform/value/Format.h"

namespace quillet::news {

using platform::Value;

namespace {

constexpr const char* kDetailsSuccess = "showDetailsSuccess:";
constexpr const char* kDetailsFail = "showDetailsFail:";

}  // namespace

TermsConditionVC::TermsConditionVC() : ViewController("TermsConditionVC") {
  lblTitle_ = std::make_shared<platform::Label>("lblTitle");
  txtDetails_ = std::make_shared<platform::TextView>("txtDetails");
  txtDetails_->setEditable(false);
  btnBack_ = std::make_shared<platform::Button>("btnBack");
  btnBack_->setTitle("Back");
  btnBack_->setAction([this](platform::Button&) { btnBackTapped(); });
  registerOutlet("lblTitle", lblTitle_);
  registerOutlet("txtDetails", txtDetails_);
  registerOutlet("btnBack", btnBack_);
  setOperation(kDetailsSuccess, [this](const Value& reply) { showDetailsSuccess(reply); });
  setOperation(kDetailsFail, [this](const Value& reply) { showDetailsFail(reply); });
}

void TermsConditionVC::viewDidLoad() {
  arrDetails_ = Value::Array{};
  lblTitle_->setText(platform::format("%@", strSETTitle_));
  if (ScaledFont::screensSetFonts()) txtDetails_->setFont(ScaledFont::scaledSystemFontWithStyle(8, 16));
  const bool terms = strSETTitle_.isString() && strSETTitle_.string() == kTermsTitle;
  parameter_ = Value::dictionary({{"id", Value(terms ? "1" : "2")}});
  auto delegate = std::shared_ptr<WebmanagerDelegate>(shared_from_this(), static_cast<WebmanagerDelegate*>(this));
  Webmanager::sharedObject().sendRequestWithUrl("cms_App", parameter_, std::move(delegate), kDetailsSuccess,
                                                kDetailsFail);
}

void TermsConditionVC::showDetailsSuccess(const Value& reply) {
  txtDetails_->setText(platform::format("%@", reply["result"]["description"]));
}

void TermsConditionVC::showDetailsFail(const Value&) {}

void TermsConditionVC::btnBackTapped() { dismissViewControllerAnimated(true); }

}  // namespace quillet::news
