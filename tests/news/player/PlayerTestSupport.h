#pragma once

// A player view on a manual-clock main loop, with a recording delegate and
// the page template from the source tree's resources.
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "news/player/InlinePlayerView.h"
#include "platform/runloop/RunLoop.h"
#include "platform/ui/Application.h"
#include "support/LogCapture.h"
#include "support/TestPaths.h"

namespace quillet::news::testing {

class RecordingPlayerDelegate : public InlinePlayerViewDelegate {
 public:
  std::vector<std::string> events;
  std::shared_ptr<platform::View> loadingView;
  std::optional<platform::Color> background;

  void playerViewDidBecomeReady(InlinePlayerView&) override { events.push_back("ready"); }
  void playerViewDidChangeToState(InlinePlayerView&, PlayerState state) override {
    events.push_back(std::string("state:") + std::to_string(static_cast<int>(state)));
  }
  void playerViewDidChangeToQuality(InlinePlayerView&, PlaybackQuality quality) override {
    events.push_back(std::string("quality:") + std::to_string(static_cast<int>(quality)));
  }
  void playerViewReceivedError(InlinePlayerView&, PlayerError error) override {
    events.push_back(std::string("error:") + std::to_string(static_cast<int>(error)));
  }
  void playerViewDidPlayTime(InlinePlayerView&, float time) override {
    events.push_back(std::string("time:") + platform::Value(static_cast<double>(time)).description());
  }
  std::optional<platform::Color> playerViewPreferredWebViewBackgroundColor(InlinePlayerView&) override {
    return background;
  }
  std::shared_ptr<platform::View> playerViewPreferredInitialLoadingView(InlinePlayerView&) override {
    return loadingView;
  }
};

class PlayerFixture {
 public:
  PlayerFixture() {
    platform::RunLoop::setMain(loop);
    platform::Application::setSharedApplication(application);
    player->setDelegate(delegate);
    player->setResourceDirectory(sourceResources());
    player->setFrame(platform::Rect{0, 0, 320, 180});
  }
  ~PlayerFixture() {
    platform::Application::setSharedApplication(nullptr);
    platform::RunLoop::setMain(nullptr);
  }

  // The resources of the source tree, which hold "Assets/" as the built ones do.
  static std::filesystem::path sourceResources() {
    return quillet::testing::TestPaths::sourceDirectory() / "resources";
  }

  quillet::testing::LogCapture log;
  std::shared_ptr<platform::RunLoop> loop =
      std::make_shared<platform::RunLoop>(std::make_shared<platform::ManualClock>());
  std::shared_ptr<platform::Application> application = std::make_shared<platform::Application>();
  std::shared_ptr<RecordingPlayerDelegate> delegate = std::make_shared<RecordingPlayerDelegate>();
  std::shared_ptr<InlinePlayerView> player = std::make_shared<InlinePlayerView>("playerView");
};

}  // namespace quillet::news::testing
