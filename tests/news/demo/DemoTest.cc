// The interactive demo against the stand-in news server, on virtual time:
// keys in, drawn text out.
#include <gtest/gtest.h>

#include <atomic>
#include <sstream>
#include <string>

#include "backend/news/NewsServer.h"
#include "news/demo/DemoConsole.h"
#include "news/demo/DemoKeys.h"
#include "news/demo/DemoRenderer.h"
#include "news/demo/LineSink.h"
#include "news/demo/WordWrap.h"
#include "news/driver/CardState.h"
#include "support/LogCapture.h"
#include "support/TempDir.h"

namespace quillet::news {
namespace {

using platform::Value;

class DemoTest : public ::testing::Test {
 protected:
  void SetUp() override {
    backend::NewsServerOptions options;
    options.dataDirectory = serverDir_.path();
    server_ = std::make_unique<backend::NewsServer>(options);
    ASSERT_TRUE(server_->start());
  }
  void TearDown() override { server_->stop(); }

  DemoOptions options() {
    DemoOptions demo;
    demo.phone.dataDirectory = phoneDir_.path();
    demo.phone.network = "wifi";
    demo.phone.virtualClock = true;
    demo.phone.apiBase = server_->apiUrl();
    demo.columns = 50;
    return demo;
  }

  ::quillet::testing::LogCapture log_;
  ::quillet::testing::TempDir serverDir_;
  ::quillet::testing::TempDir phoneDir_;
  std::unique_ptr<backend::NewsServer> server_;
};

TEST_F(DemoTest, KeysOnboardReadAndBookmarkThenQuitLeaves) {
  std::ostringstream out;
  std::string title;
  int status = -1;
  {
    DemoConsole console(options(), out);
    // Check two categories, Next, the next story, bookmark it, then quit;
    // the line after "quit" is never read.
    std::istringstream in("6\n2\ng\nn\nb\nquit\nn\n");
    status = console.run(in);
    title = CardState::feed(console.session().application())["card"]["title"].string();
  }
  const std::string text = out.str();
  EXPECT_EQ(status, 0);
  EXPECT_EQ(text.find("{\""), std::string::npos) << "raw JSON in:\n" << text;
  EXPECT_NE(text.find("Quillet is starting..."), std::string::npos);
  EXPECT_NE(text.find("== CategoryVC"), std::string::npos) << text;
  EXPECT_NE(text.find("[x] "), std::string::npos) << text;
  EXPECT_NE(text.find("== HomeVC"), std::string::npos) << text;
  ASSERT_FALSE(title.empty());
  EXPECT_NE(text.find(WordWrap::lines(title, 50).front()), std::string::npos) << text;
  EXPECT_NE(text.find("Posted By "), std::string::npos) << text;
  EXPECT_NE(text.find("card 2 of "), std::string::npos) << text;
  EXPECT_NE(text.find("\n[toast] Bookmarked\n"), std::string::npos) << text;
  EXPECT_NE(text.find("keys: n next"), std::string::npos);
  for (size_t start = 0, end; (end = text.find('\n', start)) != std::string::npos; start = end + 1) {
    const std::string line = text.substr(start, end - start);
    if (line.find("http") == std::string::npos && !line.starts_with("[")) {
      EXPECT_LE(WordWrap::characters(line), 50u) << line;
    }
  }
}

TEST_F(DemoTest, TheStopFlagEndsTheSessionAndBadCommandsAreToldNotFatal) {
  std::atomic<bool> stop{false};
  DemoOptions demo = options();
  demo.stop = &stop;
  std::ostringstream out;
  DemoConsole console(demo, out);
  ASSERT_TRUE(console.start());
  EXPECT_TRUE(console.handle("frobnicate"));
  EXPECT_TRUE(console.handle("x"));
  EXPECT_NE(out.str().find("[error] unknown command: frobnicate"), std::string::npos) << out.str();
  EXPECT_NE(out.str().find("no panel is open"), std::string::npos);
  stop = true;
  std::istringstream in("n\n");
  EXPECT_EQ(console.run(in), 0);
}

TEST(DemoKeysTest, KeysBecomeCommandsByScreenAndPanel) {
  const Value menuOpen = Value::dictionary({{"menu", Value::array({Value("My Feed")})}});
  const Value optionsOpen = Value::dictionary({{"options", Value::array({Value("Night Mode")})}});
  EXPECT_EQ(DemoKeys::translate(" n ", "HomeVC", Value()).command, "swipe left");
  EXPECT_EQ(DemoKeys::translate("r", "HomeVC", Value()).command, "swipe right");
  EXPECT_EQ(DemoKeys::translate("x", "HomeVC", menuOpen).command, "tap btnHideMenu");
  EXPECT_EQ(DemoKeys::translate("x", "HomeVC", optionsOpen).command, "tap btnHideOption");
  EXPECT_EQ(DemoKeys::translate("3", "HomeVC", menuOpen).command, "select 3");
  EXPECT_EQ(DemoKeys::translate("3", "CategoryVC", Value()).command, "check 3");
  EXPECT_EQ(DemoKeys::translate("switch night on", "HomeVC", Value()).command, "switch night on");
  EXPECT_EQ(DemoKeys::translate("quit", "HomeVC", Value()).action, DemoKeys::Action::Quit);
  EXPECT_EQ(DemoKeys::translate("?", "HomeVC", Value()).action, DemoKeys::Action::Help);
}

TEST(DemoRendererTest, EventsAreToldInShortLines) {
  const Value alert = Value::dictionary(
      {{"event", Value("alertShown")},
       {"text", Value("No Internet Connection Found")},
       {"info", Value::dictionary({{"message", Value("")},
                                   {"actions", Value::array({Value::dictionary({{"title", Value("OK")}})})}})}});
  EXPECT_EQ(DemoRenderer::event(alert), "[alert] No Internet Connection Found \xE2\x80\x94 buttons: OK");
  const Value untitled = Value::dictionary(
      {{"event", Value("alertShown")},
       {"info", Value::dictionary({{"message", Value("No Internet Connection Found")},
                                   {"actions", Value::array({Value::dictionary({{"title", Value("OK")}})})}})}});
  EXPECT_EQ(DemoRenderer::event(untitled), "[alert] No Internet Connection Found \xE2\x80\x94 buttons: OK");
  EXPECT_EQ(DemoRenderer::event(Value::dictionary({{"event", Value("urlOpened")}, {"text", Value("http://x/1")}})),
            "[opened] http://x/1");
  EXPECT_EQ(DemoRenderer::event(Value::dictionary({{"event", Value("quit")}})), "");
  EXPECT_EQ(DemoRenderer::event(Value("not a dictionary")), "");
}

TEST(DemoRendererTest, PagesShowTheirTextsAndTheOverlayOnlyWhileItShows) {
  auto outlets = [](double hudAlpha) {
    return Value::dictionary(
        {{"lblTitle", Value::dictionary({{"kind", Value("label")}, {"text", Value("Privacy Policy")}})},
         {"txtDetails", Value::dictionary({{"kind", Value("textView")}, {"text", Value("We keep little.")}})},
         {"webView", Value::dictionary({{"kind", Value("webView")}, {"url", Value("http://x/story/1")}})},
         {"HUD",
          Value::dictionary(
              {{"kind", Value("progressHUD")}, {"labelText", Value("Loading.....")}, {"alpha", Value(hudAlpha)}})}});
  };
  const std::string shown =
      DemoRenderer::screen(Value::dictionary({{"screen", Value("Page")}, {"outlets", outlets(1)}}), Value(), 60);
  for (const char* line :
       {"Privacy Policy\n", "[txtDetails] We keep little.\n", "[page] http://x/story/1\n", "[Loading.....]\n"}) {
    EXPECT_NE(shown.find(line), std::string::npos) << line << " in " << shown;
  }
  const std::string faded =
      DemoRenderer::screen(Value::dictionary({{"screen", Value("Page")}, {"outlets", outlets(0)}}), Value(), 60);
  EXPECT_EQ(faded.find("Loading"), std::string::npos);
}

TEST(WordWrapTest, WrapsAtSpacesKeepsBreaksAndCutsLongWords) {
  using Lines = std::vector<std::string>;
  EXPECT_EQ(WordWrap::lines("one two  three four", 9), (Lines{"one two", "three", "four"}));
  EXPECT_EQ(WordWrap::lines("a\n\nb", 9), (Lines{"a", "", "b"}));
  EXPECT_EQ(WordWrap::lines("abcdefghij", 4), (Lines{"abcd", "efgh", "ij"}));
  EXPECT_EQ(WordWrap::lines("\xC3\xA9t\xC3\xA9 \xC3\xA9t\xC3\xA9", 7), (Lines{"\xC3\xA9t\xC3\xA9 \xC3\xA9t\xC3\xA9"}));
}

TEST(LineSinkTest, HandsOverEachLineAndTheUnfinishedOneAtTheEnd) {
  std::vector<std::string> lines;
  {
    LineSink sink([&](const std::string& line) { lines.push_back(line); });
    std::ostream out(&sink);
    out << "a\nb" << 'c' << "\n"
        << "tail";
  }
  EXPECT_EQ(lines, (std::vector<std::string>{"a", "bc", "tail"}));
}

}  // namespace
}  // namespace quillet::news
