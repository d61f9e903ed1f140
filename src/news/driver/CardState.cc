#include "news/driver/CardState.h"

#include "news/home/HomeMenu.h"
#include "news/home/HomeVC.h"
#include "news/support/ToastView.h"
#include "platform/ui/Window.h"

namespace quillet::news {

using platform::Value;

namespace {

Value medium(HomeOutlets& o) {
  if (!o.imgNews->isHidden()) {
    Value image = Value::dictionary({{"kind", Value("image")}, {"image", Value(o.imgNews->image())}});
    if (!o.imgNews->imageURL().empty()) image.set("url", Value(o.imgNews->imageURL()));
    return image;
  }
  if (!o.videoView->isHidden()) {
    return Value::dictionary({{"kind", Value("video")},
                              {"thumbnailHidden", Value(o.imgThumbnailVideo->isHidden())},
                              {"playing", Value(o.videoPlayerView->superview() != nullptr)}});
  }
  if (!o.playerView->isHidden()) {
    const auto& heard = o.playerView->reported();
    Value player = Value::dictionary({{"kind", Value("inlineVideo")},
                                      {"videoId", Value(o.playerView->videoId())},
                                      {"ready", Value(heard.ready)},
                                      {"state", Value(playerStateName(heard.state))},
                                      {"quality", Value(stringForPlaybackQuality(heard.quality))},
                                      {"playTime", Value(static_cast<double>(heard.playTime))}});
    if (heard.error) player.set("error", Value(playerErrorName(*heard.error)));
    // Where its page comes from, and every script the player has run in it, in order.
    player.set("origin", Value(o.playerView->originURL()));
    Value scripts = Value::Array{};
    if (const auto& web = o.playerView->webView()) {
      for (const auto& script : web->evaluatedScripts()) scripts.append(Value(script));
    }
    player.set("scripts", std::move(scripts));
    return player;
  }
  return Value::dictionary({{"kind", Value("none")}});
}

Value rows(const Value& list) {
  Value::Array out;
  for (const Value& row : list.arrayItems()) out.push_back(Value(row.isString() ? row.string() : row.description()));
  return Value(std::move(out));
}

}  // namespace

Value CardState::feed(platform::Application& application) {
  auto home = std::dynamic_pointer_cast<HomeVC>(application.window().topScreen());
  if (!home || !home->isViewLoaded()) return Value();
  HomeOutlets& o = home->outlets();
  Value card = Value::dictionary({
      {"title", Value(o.lblNewsTitle->text())},
      {"titleColor", Value(o.lblNewsTitle->textColor().hex())},
      {"body", Value(o.txtViewDetailNews->text())},
      {"postedBy", Value(o.lblPostedBy->text())},
      {"media", medium(o)},
      {"barOpacity", Value(o.NavView->backgroundColor() ? o.NavView->backgroundColor()->alpha : 1.0)},
  });
  Value state = Value::dictionary({
      {"card", card},
      {"count", Value(int64_t{home->count()})},
      {"listSize", Value(static_cast<int64_t>(home->arrNews().count()))},
      {"feedMode", Value(home->newsType())},
      {"feedTitle", Value(o.lblCategoryTitle->text())},
      {"bookmark", Value(home->bookmark())},
      // The options panel's switches as they stand, open or not.
      {"switches", Value::dictionary({{"night", Value(o.switchNightMode->isOn())},
                                      {"hd", Value(o.switchHDImage->isOn())},
                                      {"notification", Value(o.switchNotification->isOn())}})},
  });
  if (home->menu().isMenuOpen()) state.set("menu", rows(home->menu().arrMenuList()));
  if (home->menu().isOptionsOpen()) state.set("options", rows(home->menu().arrSettingsList()));
  return state;
}

Value CardState::toast() {
  auto toast = ToastView::current();
  if (!toast) return Value();
  return Value::dictionary({{"text", Value(toast->textLabel()->text())}});
}

}  // namespace quillet::news
