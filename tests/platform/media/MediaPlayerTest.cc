#include "platform/media/MediaPlayer.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <thread>

#include "platform/notifications/NotificationCenter.h"
#include "support/LogCapture.h"
#include "support/TestPaths.h"

namespace quillet::platform {
namespace {

const std::filesystem::path kVideos = quillet::testing::TestPaths::testVideosDirectory();

class MediaPlayerTest : public ::testing::Test {
 protected:
  void open(const std::string& name) {
    item = std::make_shared<MediaPlayerItem>(MediaAsset::assetWithURL((kVideos / name).string()));
    for (const char* notification :
         {MediaPlayer::kDidPlayToEndTimeNotification, MediaPlayer::kFailedToPlayToEndTimeNotification}) {
      observers.push_back(NotificationCenter::defaultCenter().addObserver(
          notification, item.get(), [this, notification](const Notification&) {
            heard.push_back(notification);
            onLoopThread = onLoopThread && loop->isCurrent() && std::this_thread::get_id() == testThread;
          }));
    }
    player = std::make_unique<MediaPlayer>(item, loop);
  }

  void TearDown() override {
    player.reset();
    for (auto token : observers) NotificationCenter::defaultCenter().removeObserver(token);
  }

  // Runs the loop (posted work only; the clock stays) until `done`, for at most five real seconds.
  bool waitFor(const std::function<bool()>& done) {
    for (int i = 0; i < 1000 && !done(); ++i) loop->runUntil(done, 0.005);
    return done();
  }
  bool shownAt(double seconds) {
    return waitFor([&] { return item->currentTime() >= seconds - 1e-9; });
  }
  size_t ends() const {
    return std::count(heard.begin(), heard.end(), std::string(MediaPlayer::kDidPlayToEndTimeNotification));
  }

  std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>();
  std::shared_ptr<RunLoop> loop = std::make_shared<RunLoop>(clock);
  std::thread::id testThread = std::this_thread::get_id();
  std::shared_ptr<MediaPlayerItem> item;
  std::unique_ptr<MediaPlayer> player;
  std::vector<uint64_t> observers;
  std::vector<std::string> heard;
  bool onLoopThread = true;
};

TEST_F(MediaPlayerTest, PlaysToTheEndOnlyWhenTheClockHasMovedByTheDurationAndAgainAfterASeekToZero) {
  open("colours.mp4");
  EXPECT_EQ(player->rate(), 0.0);
  player->play();
  EXPECT_EQ(player->rate(), 1.0);
  ASSERT_TRUE(waitFor([&] { return player->framesDecoded() >= 1; }));
  loop->advance(1.0);
  ASSERT_TRUE(shownAt(1.0));
  loop->advance(0.95);
  ASSERT_TRUE(shownAt(1.9));
  EXPECT_EQ(ends(), 0u);
  EXPECT_EQ(player->rate(), 1.0);

  loop->advance(0.05);
  ASSERT_TRUE(waitFor([&] { return ends() == 1; }));
  EXPECT_TRUE(onLoopThread);
  EXPECT_EQ(player->rate(), 0.0);
  EXPECT_EQ(player->framesDecoded(), 20);
  EXPECT_DOUBLE_EQ(item->currentTime(), 2.0);

  item->seekToTime(0);
  EXPECT_EQ(item->currentTime(), 0.0);
  player->play();
  ASSERT_TRUE(waitFor([&] { return player->framesDecoded() >= 21; }));
  loop->advance(2.0);
  ASSERT_TRUE(waitFor([&] { return ends() == 2; }));
  EXPECT_EQ(player->framesDecoded(), 40);
}

TEST_F(MediaPlayerTest, PauseHoldsThePositionWhileTheClockMoves) {
  open("tone.mp4");  // with a sound stream, decoded and dropped
  player->play();
  loop->advance(0.55);
  ASSERT_TRUE(shownAt(0.5));
  player->pause();
  EXPECT_EQ(player->rate(), 0.0);
  ASSERT_TRUE(waitFor([&] { return item->currentTime() >= 0.55 - 1e-9; }));
  loop->advance(10.0);
  EXPECT_FALSE(loop->runUntil([&] { return !heard.empty(); }, 0.05));
  EXPECT_NEAR(item->currentTime(), 0.55, 1e-9);

  player->play();
  loop->advance(1.4);
  ASSERT_TRUE(shownAt(1.9));
  EXPECT_EQ(ends(), 0u);
  loop->advance(0.05);
  ASSERT_TRUE(waitFor([&] { return ends() == 1; }));
  EXPECT_EQ(player->framesDecoded(), 20);
}

TEST_F(MediaPlayerTest, AFailureIsLoggedAndReportedButIsNotAnEndOfPlay) {
  testing::LogCapture log;
  open("missing.mp4");
  player->play();
  ASSERT_TRUE(waitFor([&] { return !heard.empty(); }));
  EXPECT_EQ(heard, std::vector<std::string>{MediaPlayer::kFailedToPlayToEndTimeNotification});
  EXPECT_TRUE(log.contains("media player: cannot play"));
  EXPECT_EQ(player->rate(), 0.0);
}

TEST_F(MediaPlayerTest, DestroyingAPlayerMidwayEndsItsThreadAtOnce) {
  open("colours.mp4");
  player->play();
  loop->advance(0.3);
  ASSERT_TRUE(shownAt(0.3));
  player.reset();
  loop->advance(5.0);
  loop->runPending();
  EXPECT_TRUE(heard.empty());
}

}  // namespace
}  // namespace quillet::platform
