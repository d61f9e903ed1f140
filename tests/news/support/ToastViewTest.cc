// The toast queue on a manual clock, and the scaled font rule.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "news/support/ScaledFont.h"
#include "news/support/ToastView.h"
#include "platform/runloop/RunLoop.h"
#include "platform/ui/Application.h"
#include "platform/ui/Screen.h"
#include "platform/ui/UiEvents.h"

namespace quillet::news {
namespace {

class ToastViewTest : public ::testing::Test {
 protected:
  ToastViewTest()
      : clock_(std::make_shared<platform::ManualClock>()),
        loop_(std::make_shared<platform::RunLoop>(clock_)),
        application_(std::make_shared<platform::Application>(std::make_shared<platform::UiEvents>())),
        parent_(std::make_shared<platform::View>("root")) {
    platform::RunLoop::setMain(loop_);
    platform::Application::setSharedApplication(application_);
    parent_->setFrame(platform::Rect{0, 0, 375, 667});
    start_ = clock_->monotonicSeconds();
    application_->events()->subscribe([this](const platform::UiEvent& event) {
      shown_.push_back({event.text, clock_->monotonicSeconds() - start_});
    });
  }
  ~ToastViewTest() override {
    ToastView::dropQueue();
    platform::Application::setSharedApplication(nullptr);
    platform::RunLoop::setMain(nullptr);
    platform::Screen::main() = platform::Screen{};
  }

  struct Shown {
    std::string text;
    double at;
  };

  std::shared_ptr<platform::ManualClock> clock_;
  std::shared_ptr<platform::RunLoop> loop_;
  std::shared_ptr<platform::Application> application_;
  std::shared_ptr<platform::View> parent_;
  double start_ = 0;
  std::vector<Shown> shown_;
};

TEST_F(ToastViewTest, ToastsShowOneAtATimeInOrder) {
  ToastView::toastInView(parent_, "one");
  ToastView::toastInView(parent_, "two");
  ToastView::toastInView(parent_, "three");
  EXPECT_EQ(ToastView::queuedCount(), 3u);
  ASSERT_TRUE(ToastView::current());
  EXPECT_EQ(ToastView::current()->textLabel()->text(), "one");

  loop_->advance(1.79);
  EXPECT_EQ(ToastView::current()->textLabel()->text(), "one");  // still fading out
  loop_->advance(10);
  ASSERT_EQ(shown_.size(), 3u);
  EXPECT_EQ(shown_[1].text, "two");
  EXPECT_NEAR(shown_[1].at, 1.8, 1e-9);
  EXPECT_NEAR(shown_[2].at, 3.6, 1e-9);
  EXPECT_EQ(ToastView::queuedCount(), 0u);  // the third ended at 5.4 s and the queue is gone
  EXPECT_TRUE(parent_->subviews().empty());
}

TEST_F(ToastViewTest, AToastDuringTheFadeOutWaitsForIt) {
  ToastView::toastInView(parent_, "first");
  loop_->advance(1.6);  // fading out
  ToastView::toastInView(parent_, "second");
  EXPECT_EQ(shown_.size(), 1u);
  loop_->advance(0.2);
  ASSERT_EQ(shown_.size(), 2u);
  EXPECT_NEAR(shown_[1].at, 1.8, 1e-9);
  EXPECT_EQ(parent_->subviews().size(), 1u);  // one chain, one toast on screen
}

TEST_F(ToastViewTest, ToastIsCentredAboveTheBottom) {
  ToastView::toastInView(parent_, "Refreshed");  // 9 characters at 14 pt: 63 x 17
  auto toast = ToastView::current();
  ASSERT_TRUE(toast && toast->frame());
  EXPECT_EQ(*toast->frame(), (platform::Rect{(375 - 63 - 20) / 2.0, 667 - 17 - 60, 83, 27}));
  EXPECT_DOUBLE_EQ(toast->alpha(), 1.0);
}

TEST_F(ToastViewTest, FontsScaleWithTheSmallerSideOfTheScreen) {
  EXPECT_EQ(ScaledFont::scaledSystemFontWithStyle(7, 16), (platform::Font{"System-Light", 18}));  // 18.75 cut
  platform::Screen::main() = platform::Screen{667, 375, 2};  // landscape: the height counts
  EXPECT_EQ(ScaledFont::scaledSystemFontWithStyle(13, 16)->size, 18);
  EXPECT_FALSE(ScaledFont::scaledSystemFontWithStyle(4, 16));
  EXPECT_FALSE(ScaledFont::scaledSystemFontWithStyle(14, 16));
  EXPECT_DOUBLE_EQ(ScaledFont::Caption4WithStyle(0)->size, 8 * 375 / 320.0);
  EXPECT_FALSE(ScaledFont::scaledCustomFontWithStyle(5, 10));
}

}  // namespace
}  // namespace quillet::news
