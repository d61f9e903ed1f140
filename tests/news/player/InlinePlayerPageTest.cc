#include <gtest/gtest.h>

#include "news/player/InlinePlayerPage.h"
#include "news/player/PlayerTestSupport.h"

namespace quillet::news {
namespace {

using platform::Value;

class InlinePlayerPageTest : public ::testing::Test, public testing::PlayerFixture {
 protected:
  // Runs what the page posted (its navigations) and returns the delegate's events since the last call.
  std::vector<std::string> drain() {
    while (loop->runPending() > 0) {
    }
    auto events = std::move(delegate->events);
    delegate->events.clear();
    return events;
  }
  using Events = std::vector<std::string>;
};

TEST_F(InlinePlayerPageTest, TheTemplateBecomesAPlayerThatReportsThroughTheDelegate) {
  delegate->loadingView = std::make_shared<platform::View>("spinner");
  delegate->background = platform::Color::clearColor();
  ASSERT_TRUE(player->loadWithVideoId("qt1", Value::dictionary({{"playsinline", Value(1)}})));
  EXPECT_FALSE(player->webView()->opaque);
  EXPECT_EQ(player->initialLoadingView()->superview(), player.get());
  EXPECT_EQ(player->playerState(), PlayerState::Unknown);  // not ready: the page answers ""

  EXPECT_EQ(drain(), Events{"ready"});
  EXPECT_EQ(player->initialLoadingView(), nullptr);
  EXPECT_EQ(player->subviews().size(), 1u);
  EXPECT_EQ(player->playerState(), PlayerState::Unstarted);
  EXPECT_EQ(player->duration(), InlinePlayerPage::kVideoSeconds);
  EXPECT_EQ(player->videoUrl(), "https://video.quillet.test/watch?v=qt1");
  EXPECT_EQ(player->availableQualityLevels(),
            (std::vector<PlaybackQuality>{PlaybackQuality::HD720, PlaybackQuality::Large, PlaybackQuality::Medium,
                                          PlaybackQuality::Small, PlaybackQuality::Auto}));
  EXPECT_EQ(player->availablePlaybackRates().count(), 5u);
  EXPECT_TRUE(player->playlist().isNil());

  player->playVideo();
  EXPECT_EQ(drain(), Events{"state:2"});
  loop->advance(1.0);
  EXPECT_EQ(drain(), (Events{"time:0.5", "time:1"}));
  player->setPlaybackRate(2);
  EXPECT_EQ(player->playbackRate(), 2.0f);
  loop->advance(0.5);
  EXPECT_EQ(drain(), Events{"time:2"});
  EXPECT_EQ(player->currentTime(), 2.0f);

  player->pauseVideo();  // its own report, then the page's
  EXPECT_EQ(drain(), (Events{"state:3", "state:3"}));
  loop->advance(1.0);
  EXPECT_EQ(drain(), Events{});

  player->setPlaybackQuality(PlaybackQuality::HD720);
  player->seekToSeconds(500, true);
  player->playVideo();
  EXPECT_EQ(drain(), (Events{"quality:3", "state:2"}));
  EXPECT_EQ(player->playbackQuality(), PlaybackQuality::HD720);
  loop->advance(0.5);
  EXPECT_EQ(drain(), (Events{"time:212", "state:1"}));  // the end of the video

  player->loadPlaylistByVideos({"a", "b", "c"}, 1, 0, PlaybackQuality::Medium);
  EXPECT_EQ(drain(), (Events{"quality:1", "state:5", "state:2"}));
  EXPECT_EQ(player->playlist(), Value::array({Value("a"), Value("b"), Value("c")}));
  player->nextVideo();
  player->nextVideo();  // past the end without loop: nothing
  EXPECT_EQ(player->playlistIndex(), 2);
  player->setLoop(true);
  player->nextVideo();
  EXPECT_EQ(player->playlistIndex(), 0);
  EXPECT_NE(player->videoEmbedCode().find("src=\"https://video.quillet.test/embed/a\""), std::string::npos);

  player->stopVideo();
  drain();
  EXPECT_EQ(player->playerState(), PlayerState::Unstarted);
  EXPECT_EQ(player->webView()->stringByEvaluatingJavaScriptFromString("document.title"), "");
}

TEST_F(InlinePlayerPageTest, AnEmptyVideoReportsAnErrorAndABrokenPageTheApiFailure) {
  delegate->loadingView = std::make_shared<platform::View>("spinner");
  ASSERT_TRUE(player->loadWithVideoId(""));
  EXPECT_EQ(drain(), Events{"ready"});
  player->playVideo();
  EXPECT_EQ(drain(), Events{"error:0"});

  // A page without the parameters: the API never builds the player.
  ASSERT_TRUE(player->loadWithVideoId("x"));
  player->webView()->loadHTMLString("<html></html>", "about:blank");
  EXPECT_NE(player->initialLoadingView(), nullptr);
  player->webView()->setPageFactory(
      [](const platform::WebPageSource& source) { return std::make_shared<InlinePlayerPage>(source.html); });
  player->webView()->loadHTMLString("<html></html>", "about:blank");
  EXPECT_EQ(drain(), Events{});
  EXPECT_EQ(player->initialLoadingView(), nullptr);

  // A failed load removes the loading view too.
  ASSERT_TRUE(player->loadWithVideoId("y"));
  ASSERT_NE(player->initialLoadingView(), nullptr);
  player->webView()->failLoad(platform::Error("NSURLErrorDomain", -1009));
  EXPECT_EQ(player->initialLoadingView(), nullptr);
}

}  // namespace
}  // namespace quillet::news
