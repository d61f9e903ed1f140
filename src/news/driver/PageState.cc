#include "news/driver/PageState.h"

#include "news/pages/FeedbackViewController.h"
#include "news/pages/FullStoryVC.h"
#include "news/pages/TermsConditionVC.h"
#include "platform/ui/Label.h"
#include "platform/ui/ProgressHUD.h"
#include "platform/ui/TextInput.h"
#include "platform/ui/Window.h"

namespace quillet::news {

using platform::Value;

namespace {

std::string textOf(const platform::ViewController& screen, std::string_view outlet) {
  if (auto label = screen.outlet<platform::Label>(outlet)) return label->text();
  if (auto input = screen.outlet<platform::TextInput>(outlet)) return input->text();
  return "";
}

Value fullStory(FullStoryVC& page) {
  Value out =
      Value::dictionary({{"url", Value(page.webView()->url())}, {"loading", Value(page.webView()->isLoading())}});
  if (const auto& hud = page.HUD()) {
    out.set("overlay", Value::dictionary({{"shown", Value(hud->isShown() && !hud->isHidden())},
                                          {"labelText", Value(hud->labelText())}}));
  }
  return out;
}

Value feedback(FeedbackViewController& page) {
  const auto& message = page.txtMessage();
  const auto& frame = page.view()->frame();
  std::string editing;
  if (page.txtEmail()->isEditing()) editing = "txtEmail";
  if (message->isEditing()) editing = "txtMessage";
  return Value::dictionary({
      {"email", Value(page.txtEmail()->text())},
      {"message", Value(message->text())},
      {"hintShown", Value(message->text() == FeedbackViewController::kHint)},
      {"editing", Value(editing)},
      {"viewOffset", Value(frame ? -frame->y : 0.0)},
  });
}

}  // namespace

Value PageState::of(platform::Application& application) {
  auto top = application.window().topScreen();
  if (!top) return Value();
  if (std::dynamic_pointer_cast<TermsConditionVC>(top)) {
    return Value::dictionary({{"kind", Value("text")},
                              {"title", Value(textOf(*top, "lblTitle"))},
                              {"text", Value(textOf(*top, "txtDetails"))}});
  }
  if (auto story = std::dynamic_pointer_cast<FullStoryVC>(top); story && story->isViewLoaded()) {
    Value out = fullStory(*story);
    out.set("kind", Value("fullStory"));
    return out;
  }
  if (auto form = std::dynamic_pointer_cast<FeedbackViewController>(top); form && form->isViewLoaded()) {
    Value out = feedback(*form);
    out.set("kind", Value("feedback"));
    return out;
  }
  return Value();
}

}  // namespace quillet::news
