// The feedback form: the hint, the checks in order with their toasts, the
// address rule, a refused or failed send, and the view's moves. (A send that
// is stored is played end to end by the driver's content script.)
#include "PagesTestSupport.h"
#include "news/pages/FeedbackViewController.h"
#include "platform/ui/Snapshot.h"

namespace quillet::news {
namespace {

using platform::Value;
using Form = FeedbackViewController;

class FeedbackViewControllerTest : public testing::PagesTest {
 protected:
  void SetUp() override {
    PagesTest::SetUp();
    form_ = present(std::make_shared<Form>());
  }
  // Types both texts as the reader does, then taps Submit.
  void submit(const std::string& email, const std::string& message) {
    ASSERT_TRUE(form_->txtEmail()->performSetText(email, nullptr));
    ASSERT_TRUE(form_->txtMessage()->performSetText(message, nullptr));
    ASSERT_TRUE(form_->outlet<platform::Button>("btnSubmit")->performTap(nullptr));
  }
  double viewTop() { return form_->view()->frame()->y; }

  std::shared_ptr<Form> form_;
};

TEST_F(FeedbackViewControllerTest, TheHintStandsInTheMessageBoxAsItsText) {
  Value box = platform::Snapshot::outletsOf(*form_)["txtMessage"];
  EXPECT_EQ(box["text"], Value("Please enter your feedback"));
  EXPECT_EQ(box["textColor"], Value(platform::Color::lightGrayColor().hex()));
  EXPECT_EQ(box["borderColor"], Value("#000000FF"));
  EXPECT_EQ(form_->txtEmail()->font()->name, "System-Light");

  form_->txtMessage()->beginEditing();
  EXPECT_EQ(form_->txtMessage()->text(), "");
  EXPECT_EQ(form_->txtMessage()->textColor(), platform::Color::blackColor());
  form_->txtMessage()->endEditing();
  EXPECT_EQ(form_->txtMessage()->text(), "Please enter your feedback");
  EXPECT_EQ(form_->txtMessage()->textColor(), platform::Color::lightGrayColor());
}

TEST_F(FeedbackViewControllerTest, ChecksRunInOrderWithTheirToasts) {
  submit("", "");
  submit("reader", "");
  submit("reader@mail.org", "");
  ASSERT_TRUE(form_->outlet<platform::Button>("btnSubmit")->performTap(nullptr));  // the hint is the text
  loop_->advance(10);
  EXPECT_EQ(toasts, (std::vector<std::string>{"Please enter email id.", "Please enter valid email id.",
                                              "Please enter feedback.", "Please enter feedback."}));
  EXPECT_EQ(form_->txtMessage()->text(), "Please enter your feedback");
  EXPECT_TRUE(queries("addFeedback").empty());
}

TEST_F(FeedbackViewControllerTest, TheAddressMustMatchAsAWhole) {
  for (const char* good : {"a@b.co", "first.last+tag@mail.example.info", "X_9%@host-1.io", "a@b.c.de"}) {
    EXPECT_TRUE(Form::isValidAddress(good)) << good;
  }
  for (const char* bad : {"a@b.c", "a@b.museum", "a b@c.org", "ab@c .org", "ab@c.org ", " ab@c.org", "ab@c", "@c.org",
                          "ab@@c.org", "ab@c.org\n"}) {
    EXPECT_FALSE(Form::isValidAddress(bad)) << bad;
  }
}

TEST_F(FeedbackViewControllerTest, AReplyThatSaysNoKeepsTheForm) {
  server_->setFault("addFeedback", backend::NewsFault{backend::NewsFault::Kind::StatusFalse});
  submit("reader@mail.org", "Hello");
  ASSERT_TRUE(waitFor([&] { return alert() != nullptr; }));
  EXPECT_EQ(alert()->message(), "Message failed to sent.");
  EXPECT_EQ(app_->window().topScreen(), form_);
  EXPECT_EQ(form_->txtEmail()->text(), "reader@mail.org");
  EXPECT_EQ(form_->txtMessage()->text(), "Hello");
}

TEST_F(FeedbackViewControllerTest, AFailedTransportSaysNothing) {
  Webmanager::sharedObject().setAPIBase(kClosedPortBase);
  submit("reader@mail.org", "Hello");
  ASSERT_TRUE(waitForTransportFailure());
  loop_->runPending();
  EXPECT_EQ(alert(), nullptr);
  EXPECT_EQ(app_->window().topScreen(), form_);
  EXPECT_EQ(form_->txtMessage()->text(), "Hello");
}

TEST_F(FeedbackViewControllerTest, TheViewMovesUpWhileATextIsEdited) {
  const double top = viewTop();
  const double emailY = form_->txtEmail()->frame()->y;
  const double messageY = form_->txtMessage()->frame()->y;
  form_->txtEmail()->beginEditing();
  EXPECT_EQ(viewTop(), top - emailY / 2);
  form_->txtEmail()->pressReturn();
  EXPECT_FALSE(form_->txtEmail()->isEditing());
  EXPECT_EQ(viewTop(), top);

  form_->txtMessage()->beginEditing();
  EXPECT_EQ(viewTop(), top - (messageY / 2 + 10));
  ASSERT_TRUE(form_->outlet<platform::View>("view")->performTap(nullptr));  // a touch outside
  EXPECT_FALSE(form_->txtMessage()->isEditing());
  EXPECT_EQ(viewTop(), top);

  form_->outlet<platform::Button>("btnBack")->performTap(nullptr);
  EXPECT_EQ(app_->window().topScreen(), feed_);
}

}  // namespace
}  // namespace quillet::news
