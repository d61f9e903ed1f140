#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <functional>

#include "news/player/InlinePlayerTemplate.h"
#include "news/player/PlayerTestSupport.h"
#include "platform/value/Json.h"
#include "support/TempDir.h"

namespace quillet::news {
namespace {

using platform::Value;

class InlinePlayerViewTest : public ::testing::Test, public testing::PlayerFixture {
 protected:
  Value loadedParams() {
    return platform::jsonDecode(InlinePlayerTemplate::paramsJSONInPage(player->webView()->html()));
  }
};

TEST_F(InlinePlayerViewTest, EventTextsMapAsTheTablesSay) {
  player->notifyDelegateOfCallbackUrl("inlineplayer://onStateChange");  // no query: null data
  player->notifyDelegateOfCallbackUrl("inlineplayer://onStateChange?data=4");
  player->notifyDelegateOfCallbackUrl("inlineplayer://onStateChange?data=-1");
  player->notifyDelegateOfCallbackUrl("inlineplayer://onStateChange?data=5");
  player->notifyDelegateOfCallbackUrl("inlineplayer://onPlaybackQualityChange?data=tiny");
  player->notifyDelegateOfCallbackUrl("inlineplayer://onPlaybackQualityChange?data=hd1080");
  player->notifyDelegateOfCallbackUrl("inlineplayer://onError?data=150");
  player->notifyDelegateOfCallbackUrl("inlineplayer://onError?data=101");
  player->notifyDelegateOfCallbackUrl("inlineplayer://onError?data=105");
  player->notifyDelegateOfCallbackUrl("inlineplayer://onError?data=7");
  player->notifyDelegateOfCallbackUrl("inlineplayer://onPlayTime?data=12.5");
  player->notifyDelegateOfCallbackUrl("inlineplayer://onSomethingElse?data=1");
  EXPECT_EQ(delegate->events,
            (std::vector<std::string>{"state:6", "state:6", "state:0", "state:5", "quality:8", "quality:4", "error:3",
                                      "error:3", "error:2", "error:4", "time:12.5"}));
  EXPECT_EQ(stringForPlaybackQuality(static_cast<PlaybackQuality>(7)), "unknown");
  EXPECT_EQ(stringForPlayerState(PlayerState::Unknown), "unknown");
}

TEST_F(InlinePlayerViewTest, LoadBuildsTheParametersAndTheOrigin) {
  ASSERT_TRUE(player->loadWithVideoId("", Value::dictionary({{"playsinline", Value(1)}})));
  EXPECT_EQ(player->originURL(), "about:blank");
  Value params = loadedParams();
  EXPECT_EQ(params["videoId"], Value(""));
  EXPECT_EQ(params["width"], Value("100%"));
  EXPECT_EQ(params["playerVars"], Value::dictionary({{"playsinline", Value(1)}}));
  EXPECT_EQ(params["events"]["onError"], Value("onPlayerError"));
  EXPECT_EQ(player->webView()->url(), "about:blank");
  EXPECT_TRUE(player->webView()->allowsInlineMediaPlayback);
  EXPECT_FALSE(player->webView()->mediaPlaybackRequiresUserAction);
  EXPECT_FALSE(player->webView()->scrollEnabled);

  auto first = player->webView();
  ASSERT_TRUE(player->loadWithPlaylistId("PL1", Value::dictionary({{"origin", Value("http://news.quillet.test")}})));
  EXPECT_NE(player->webView(), first);
  EXPECT_EQ(player->subviews().size(), 1u);
  EXPECT_EQ(player->originURL(), "http://news.quillet.test");
  params = loadedParams();
  EXPECT_TRUE(params["videoId"].isNil());
  EXPECT_EQ(params["playerVars"]["list"], Value("PL1"));
  EXPECT_EQ(params["playerVars"]["listType"], Value("playlist"));
  EXPECT_EQ(player->webView()->url(), "http://news.quillet.test");
}

TEST_F(InlinePlayerViewTest, TemplateAndVarsFailuresAreLoggedAndSurvived) {
  quillet::testing::TempDir empty;
  player->setResourceDirectory(empty.path());
  EXPECT_FALSE(player->loadWithVideoId("a1"));
  EXPECT_TRUE(log.contains("Received error rendering template: Error Domain=NSCocoaErrorDomain Code=260"));

  // Found in Assets.bundle when not in Assets; a stray percent sign is refused.
  std::filesystem::create_directories(empty.path() / "Assets.bundle" / "Assets");
  std::ofstream(empty.path() / "Assets.bundle" / "Assets" / "InlinePlayerView-iframe-player.html")
      << "<b style='width: 100%'><script id=\"inlineplayer-params\">%@</script>";
  log.clear();
  EXPECT_FALSE(player->loadWithVideoId("a1"));
  EXPECT_TRUE(log.contains("Received error rendering template: Error Domain=NSCocoaErrorDomain Code=2048"));
  std::string page;
  EXPECT_FALSE(InlinePlayerTemplate::render("%d %@", "{}", &page, nullptr));
  EXPECT_FALSE(InlinePlayerTemplate::render("no placeholder", "{}", &page, nullptr));
  ASSERT_TRUE(InlinePlayerTemplate::render("100%% %@", "{}", &page, nullptr));
  EXPECT_EQ(page, "100% {}");

  player->setResourceDirectory(sourceResources());
  log.clear();
  EXPECT_FALSE(player->loadWithVideoId("a1", Value::dictionary({{"start", Value(std::nan(""))}})));
  EXPECT_FALSE(player->loadWithVideoId("a1", Value::dictionary({{"key", Value::bytes("\x01")}})));
  ASSERT_EQ(log.messages().size(), 2u);
  EXPECT_EQ(log.messages()[0].rfind("Attempted configuration of player with invalid playerVars: {\n", 0), 0u);
  EXPECT_NE(log.messages()[0].find(" \tError: Error Domain=NSCocoaErrorDomain Code=3840"), std::string::npos);
}

TEST_F(InlinePlayerViewTest, CommandsSendTheirExactScripts) {
  // Without a load there is no web view: commands do nothing, queries read "".
  player->playVideo();
  EXPECT_EQ(player->playerState(), PlayerState::Unknown);
  EXPECT_TRUE(player->availableQualityLevels().empty());

  ASSERT_TRUE(player->loadWithVideoId("v1"));
  const std::vector<std::pair<std::function<void()>, std::string>> table = {
      {[&] { player->playVideo(); }, "player.playVideo();"},
      {[&] { player->seekToSeconds(12.5, true); }, "player.seekTo(12.5, true);"},
      {[&] { player->cueVideoById("a", 10, PlaybackQuality::Small); }, "player.cueVideoById('a', 10, 'small');"},
      {[&] { player->cueVideoById("a", 1, 2, PlaybackQuality::Auto); },
       "player.cueVideoById({'videoId': 'a', 'startSeconds': 1, 'endSeconds': 2, 'suggestedQuality': 'auto'});"},
      {[&] { player->loadVideoById("a", 1, 2, PlaybackQuality::Unknown); },
       "player.loadVideoById({'videoId': 'a', 'startSeconds': 1, 'endSeconds': 2, 'suggestedQuality': 'unknown'});"},
      {[&] { player->cueVideoByURL("http://u/x", 3, 4, PlaybackQuality::Large); },
       "player.cueVideoByUrl('http://u/x', 3, 4, 'large');"},
      {[&] { player->loadVideoByURL("http://u/x", 3, 4, PlaybackQuality::HD1080); },
       "player.loadVideoByUrl('http://u/x', 3, 4, 'hd1080');"},
      {[&] { player->cuePlaylistByPlaylistId("PL", 2, 0, PlaybackQuality::Medium); },
       "player.cuePlaylist('PL', 2, 0, 'medium');"},
      {[&] {
         player->loadPlaylistByVideos({"a", "b"}, 1, 5, PlaybackQuality::Medium);
       },
       "player.loadPlaylist(['a', 'b'], 1, 5, 'medium');"},
      {[&] { player->setPlaybackRate(1.5f); }, "player.setPlaybackRate(1.500000);"},
      {[&] { player->setLoop(true); }, "player.setLoop(true);"},
      {[&] { player->setPlaybackQuality(PlaybackQuality::Small); }, "player.setPlaybackQuality('small');"},
      {[&] { player->playVideoAt(3); }, "player.playVideoAt(3);"},
  };
  for (const auto& [command, script] : table) {
    command();
    EXPECT_EQ(player->webView()->evaluatedScripts().back(), script);
  }
  EXPECT_EQ(InlinePlayerView::stringFromVideoIdArray({}), "[]");
}

TEST_F(InlinePlayerViewTest, PauseReportsPausedBeforeItsScript) {
  ASSERT_TRUE(player->loadWithVideoId("v1"));
  size_t scriptsBefore = player->webView()->evaluatedScripts().size();
  class Checker : public testing::RecordingPlayerDelegate {
   public:
    size_t scriptsSeen = 99;
    void playerViewDidChangeToState(InlinePlayerView& view, PlayerState state) override {
      scriptsSeen = view.webView()->evaluatedScripts().size();
      RecordingPlayerDelegate::playerViewDidChangeToState(view, state);
    }
  };
  auto checker = std::make_shared<Checker>();
  player->setDelegate(checker);
  player->pauseVideo();
  EXPECT_EQ(checker->events, (std::vector<std::string>{"state:3"}));
  EXPECT_EQ(checker->scriptsSeen, scriptsBefore);
  EXPECT_EQ(player->webView()->evaluatedScripts().back(), "player.pauseVideo();");
}

TEST_F(InlinePlayerViewTest, NavigationPolicyKeepsThePlayersPagesOnly) {
  ASSERT_TRUE(player->loadWithVideoId("v1", Value::dictionary({{"origin", Value("https://news.quillet.test")}})));
  auto& web = *player->webView();
  auto allows = [&](const std::string& url) {
    return player->webViewShouldStartLoad(web, url, platform::WebNavigationType::LinkClicked);
  };
  EXPECT_TRUE(allows("https://news.quillet.test/anything"));  // the origin's host
  EXPECT_TRUE(allows("HTTPS://WWW.VIDEO.QUILLET.TEST/EMBED/abc?x=1"));
  EXPECT_TRUE(allows("http://video.quillet.test/embed/"));
  EXPECT_TRUE(allows("https://ads.quillet.test/pagead/conversion/123"));
  EXPECT_TRUE(allows("https://adverify.quillet.test/sodar/a1.html"));
  EXPECT_TRUE(allows("https://accounts.quillet.test/o/oauth2/auth?c=1"));
  EXPECT_TRUE(allows("https://content.quillet.test/static/proxy.html#x"));
  EXPECT_TRUE(allows("mailto:a@b.test"));  // neither http nor the event scheme
  EXPECT_TRUE(application->openedURLs().empty());

  const std::vector<std::string> opened = {
      "https://evil.test/?https://video.quillet.test/embed/x",  // anchored at the start
      "http://adverify.quillet.test/sodar/a1.html",             // https only
      "https://adverify.quillet.test/sodar/a1.htmlx",
      "https://video.quillet.test/watch?v=x",
  };
  for (const auto& url : opened) EXPECT_FALSE(allows(url)) << url;
  EXPECT_EQ(application->openedURLs(), opened);

  EXPECT_FALSE(allows("inlineplayer://onPlayTime?data=3"));
  EXPECT_EQ(delegate->events, (std::vector<std::string>{"time:3"}));
}

}  // namespace
}  // namespace quillet::news
