#pragma once

#include <memory>
#include <string>

#include "news/api/WebmanagerDelegate.h"
#include "news/app/StoryLinkReceiver.h"
#include "platform/ui/Button.h"
#include "platform/ui/Label.h"
#include "platform/ui/TextView.h"
#include "platform/ui/ViewController.h"

namespace quillet::news {

// A text page from the server: the caller names it with setStrSETTitle
// before it is shown; the title "Terms and Condition" asks "cms_App" for page
// "1", any other title (or none) for page "2". The page's text is the
// reply's "result" "description"; a reply that says "status" false, like a
// failed transport, leaves the page blank.
//
// Outlets: "lblTitle" (the title as given), "txtDetails" (the page's text,
// read-only), "btnBack" (dismisses the screen, animated).
//
// Made with std::make_shared (the storyboard does); a running request holds
// it until it answers. Main thread only.
class TermsConditionVC : public platform::ViewController, public WebmanagerDelegate, public PageTitleReceiver {
 public:
  static constexpr const char* kTermsTitle = "Terms and Condition";

  TermsConditionVC();

  // PageTitleReceiver.
  void setStrSETTitle(std::string title) override { strSETTitle_ = platform::Value(std::move(title)); }

  void showDetailsSuccess(const platform::Value& reply);
  void showDetailsFail(const platform::Value& reply);
  void btnBackTapped();

  // The "cms_App" parameters chosen at load; nil before.
  const platform::Value& parameter() const { return parameter_; }

 protected:
  void viewDidLoad() override;

 private:
  std::shared_ptr<platform::Label> lblTitle_;
  std::shared_ptr<platform::TextView> txtDetails_;
  std::shared_ptr<platform::Button> btnBack_;
  platform::Value arrDetails_;  // made at load, not used
  platform::Value parameter_;
  platform::Value strSETTitle_;  // nil until the caller gives one
};

}  // namespace quillet::news
