// The video card: the thumbnail timer that is never cancelled, play and the end of play.
#include <gtest/gtest.h>

#include "HomeTestSupport.h"
#include "support/TestPaths.h"

namespace quillet::news {
namespace {

using Fixture = testing::HomeFixture;

class CardVideoTest : public ::testing::Test {
 protected:
  void SetUp() override { home_ = fixture_.show(); }
  HomeOutlets& o() { return home_->outlets(); }

  const std::string video_ = (quillet::testing::TestPaths::storyVideosDirectory() / "6.mp4").string();
  Fixture fixture_;
  std::shared_ptr<HomeVC> home_;
};

TEST_F(CardVideoTest, TheThumbnailComesLaterEvenOverTheNextCard) {
  home_->showNewsSuccess(Fixture::reply({Fixture::story("1", "Video", video_), Fixture::story("2")}));
  EXPECT_FALSE(o().videoView->isHidden());
  EXPECT_TRUE(o().imgNews->isHidden());
  EXPECT_FALSE(o().imgThumbnailVideo->loadedImage());
  home_->handleSwipe(platform::SwipeDirection::Left);  // to a picture within 0.2 s
  fixture_.loop_->advance(0.2);
  auto thumbnail = o().imgThumbnailVideo->loadedImage();
  ASSERT_TRUE(thumbnail);
  EXPECT_EQ(thumbnail->pixelWidth(), 160);
  EXPECT_EQ(o().lblNewsTitle->text(), "Story 2");
}

TEST_F(CardVideoTest, PlayRunsToTheEndAndAnUnplayableVideoOnlyToasts) {
  home_->showNewsSuccess(
      Fixture::reply({Fixture::story("1", "Video", video_ + ".missing"), Fixture::story("2", "Video", video_)}));
  fixture_.loop_->advance(0.2);
  EXPECT_FALSE(o().imgThumbnailVideo->isHidden());  // shown, empty
  EXPECT_FALSE(o().imgThumbnailVideo->loadedImage());
  home_->btnPlayVideo();
  EXPECT_TRUE(o().imgThumbnailVideo->isHidden());
  fixture_.loop_->advance(3);
  EXPECT_EQ(fixture_.toasts, (std::vector<std::string>{"Unsupported Video."}));

  home_->handleSwipe(platform::SwipeDirection::Left);
  fixture_.loop_->advance(0.2);  // the thumbnail first
  home_->btnPlayVideo();
  EXPECT_EQ(o().videoPlayerView->superview(), o().videoView.get());
  fixture_.loop_->advance(2.0);
  EXPECT_TRUE(fixture_.loop_->runUntil([this] { return fixture_.log.contains("stop"); }, 10.0));
  EXPECT_TRUE(o().imgThumbnailVideo->isHidden());
}

}  // namespace
}  // namespace quillet::news
