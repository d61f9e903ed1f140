// The full story page: the overlay over the load, hidden by the first
// finished or failed load, the log lines, back and the status bar.
#include "PagesTestSupport.h"
#include "news/pages/FullStoryVC.h"
#include "platform/ui/Snapshot.h"

namespace quillet::news {
namespace {

using platform::Value;

class FullStoryVCTest : public testing::PagesTest {
 protected:
  // Pushed onto the feed's stack, as the card's full-story button does.
  std::shared_ptr<FullStoryVC> open() {
    auto page = std::make_shared<FullStoryVC>();
    page->setStrURL("http://127.0.0.1:9/newsapp/story/7");
    navigation_->pushViewController(page, true);
    return page;
  }
};

TEST_F(FullStoryVCTest, TheOverlayShowsWhileThePageLoadsAndTheFirstFinishHidesIt) {
  auto page = open();
  ASSERT_TRUE(page->HUD());
  EXPECT_EQ(page->webView()->url(), "http://127.0.0.1:9/newsapp/story/7");
  EXPECT_TRUE(page->HUD()->isShown());
  EXPECT_EQ(page->view()->subviews().back(), page->HUD());  // over the web view
  EXPECT_EQ(page->preferredStatusBarStyle(), 1);
  Value outlets = platform::Snapshot::outletsOf(*page);
  EXPECT_EQ(outlets["HUD"]["labelText"], Value("Loading....."));
  EXPECT_EQ(outlets["HUD"]["hidden"], Value(false));

  page->webView()->finishLoad();
  EXPECT_TRUE(log.contains("complete"));
  EXPECT_FALSE(page->HUD()->isShown());
  loop_->advance(platform::ProgressHUD::kAnimationSeconds);
  EXPECT_EQ(platform::Snapshot::outletsOf(*page)["HUD"]["hidden"], Value(true));
  page->webView()->finishLoad();  // a second frame: nothing more to hide
  EXPECT_TRUE(page->HUD()->isHidden());

  page->outlet<platform::Button>("btnBack")->performTap(nullptr);
  EXPECT_EQ(app_->window().topScreen(), feed_);
  EXPECT_EQ(navigation_->viewControllers().size(), 1u);
}

TEST_F(FullStoryVCTest, AFailedLoadLogsTheErrorAndHidesTheOverlay) {
  auto page = open();
  page->webView()->failLoad(platform::Error("quillet.web", -1004));
  EXPECT_TRUE(log.contains("Failed to load with error :Error Domain=quillet.web Code=-1004"));
  loop_->advance(platform::ProgressHUD::kAnimationSeconds);
  EXPECT_TRUE(page->HUD()->isHidden());
  EXPECT_EQ(alert(), nullptr);
}

}  // namespace
}  // namespace quillet::news
