#include "http/images/NKImageViewLoading.h"

#include "http/images/ImageTestSupport.h"
#include "http/serialization/NKSerializationError.h"
#include "platform/ui/Application.h"

namespace quillet::http {
namespace {

using platform::Image;
using platform::ImageView;
namespace test = platform::test;

class NKImageViewLoadingTest : public ImageTest {
 protected:
  bool loaded(ImageView& view) {
    return runUntil([&] { return view.loadedImage() && !imageRequestOperation(view); });
  }
};

TEST_F(NKImageViewLoadingTest, LoadsShowsAndSnapshotsTheImage) {
  put("a", test::png(12, 8));
  auto view = std::make_shared<ImageView>("imgNews");
  setImageWithURL(*view, url("a"), "placeholder");
  EXPECT_EQ(view->image(), "placeholder");
  EXPECT_FALSE(view->loadedImage());
  ASSERT_TRUE(imageRequestOperation(*view));

  ASSERT_TRUE(loaded(*view));
  EXPECT_EQ(view->image(), url("a"));
  EXPECT_TRUE(view->loadedImage()->isDecoded());
  EXPECT_EQ(accept("a"), "image/*");
  const auto shot = view->describe();
  EXPECT_EQ(shot["url"], platform::Value(url("a")));
  EXPECT_EQ(shot["loaded"], platform::Value("12x8"));
}

TEST_F(NKImageViewLoadingTest, OnlyTheLatestRequestLands) {
  put("b", test::png(5, 5));
  auto view = std::make_shared<ImageView>();
  int failures = 0;
  setImageWithURLRequest(
      *view, NKURLRequest(server_.url("/hold")), "placeholder", nullptr,
      [&](const NKURLRequest&, const platform::HttpResponse*, const platform::Error&) { ++failures; });
  auto first = imageRequestOperation(*view);
  ASSERT_TRUE(server_.awaitHandler());
  setImageWithURL(*view, url("b"), "placeholder");
  EXPECT_TRUE(first->isCancelled());
  ASSERT_TRUE(loaded(*view));
  server_.open();
  ASSERT_TRUE(runUntil([&] { return first->isFinished(); }));
  loop_->runFor(0.1);
  EXPECT_EQ(view->loadedImage()->pixelWidth(), 5);
  EXPECT_EQ(view->image(), url("b"));
  EXPECT_EQ(failures, 0);  // the cancelled load's URL is no longer the view's
}

TEST_F(NKImageViewLoadingTest, CacheServesOtherViewsUntilAMemoryWarning) {
  put("c", test::png(6, 6));
  auto first = std::make_shared<ImageView>();
  setImageWithURL(*first, url("c"), "placeholder");
  ASSERT_TRUE(loaded(*first));

  // A second view gets the image at once: no placeholder, no request.
  auto second = std::make_shared<ImageView>();
  setImageWithURL(*second, url("c"), "placeholder");
  EXPECT_EQ(second->loadedImage(), first->loadedImage());
  EXPECT_EQ(second->image(), url("c"));
  EXPECT_FALSE(imageRequestOperation(*second));
  // A success callback hears a hit with neither request nor response.
  bool hit = false;
  setImageWithURLRequest(
      *second, NKURLRequest(url("c")), "",
      [&](const NKURLRequest* request, const platform::HttpResponse* response, std::shared_ptr<const Image> image) {
        hit = !request && !response && image;
      },
      nullptr);
  EXPECT_TRUE(hit);
  EXPECT_EQ(hits("c"), 1);

  platform::Application app;
  std::vector<std::string> events;
  app.events()->subscribe(
      [&](const platform::UiEvent& event) { events.push_back(platform::UiEvent::kindName(event.kind)); });
  app.receiveMemoryWarning();
  EXPECT_EQ(events, std::vector<std::string>{"memoryWarning"});
  EXPECT_EQ(NKImageCache::sharedImageCache().count(), 0u);

  auto third = std::make_shared<ImageView>();
  setImageWithURL(*third, url("c"), "placeholder");
  EXPECT_EQ(third->image(), "placeholder");
  ASSERT_TRUE(loaded(*third));
  EXPECT_EQ(hits("c"), 2);
}

TEST_F(NKImageViewLoadingTest, FailuresLeaveThePlaceholder) {
  put("page", test::png(3, 3), "text/html");
  auto view = std::make_shared<ImageView>();
  std::optional<platform::Error> seen;
  setImageWithURLRequest(
      *view, NKURLRequest(url("page")), "placeholder", nullptr,
      [&](const NKURLRequest&, const platform::HttpResponse* response, const platform::Error& error) {
        EXPECT_TRUE(response);
        seen = error;
      });
  ASSERT_TRUE(runUntil([&] { return seen.has_value(); }));
  EXPECT_EQ(seen->code, NKSerializationError::kCannotDecodeContentData);
  EXPECT_EQ(view->image(), "placeholder");
  EXPECT_FALSE(imageRequestOperation(*view));

  // No image behind the URL, no callback: silent.
  setImageWithURL(*view, url("none"), "placeholder");
  auto operation = imageRequestOperation(*view);
  ASSERT_TRUE(runUntil([&] { return operation->isFinished(); }));
  loop_->runFor(0.1);
  EXPECT_EQ(view->image(), "placeholder");
  EXPECT_FALSE(view->loadedImage());

  // Text that is no absolute URL: the placeholder and nothing else.
  for (const char* text : {"", "not a url", "/relative/path.png", "about:blank"}) {
    setImageWithURL(*view, text, "placeholder");
    EXPECT_EQ(view->image(), "placeholder");
    EXPECT_EQ(view->imageURL(), "");
    EXPECT_FALSE(imageRequestOperation(*view));
  }
}

TEST_F(NKImageViewLoadingTest, AGoneViewIsNotKeptAliveAndTheImageIsStillCached) {
  put("d", test::png(4, 4));
  auto view = std::make_shared<ImageView>();
  setImageWithURL(*view, url("d"));
  auto operation = imageRequestOperation(*view);
  std::weak_ptr<ImageView> weak = view;
  view.reset();
  EXPECT_TRUE(weak.expired());
  ASSERT_TRUE(runUntil([&] { return NKImageCache::sharedImageCache().count() == 1; }));
}

TEST_F(NKImageViewLoadingTest, PerViewSerializer) {
  put("e", test::png(8, 8));
  auto view = std::make_shared<ImageView>();
  auto serializer = NKImageResponseSerializer::serializer();
  serializer->automaticallyInflatesResponseImage = false;
  setImageResponseSerializer(*view, serializer);
  EXPECT_EQ(imageResponseSerializer(*view), serializer);
  setImageWithURL(*view, url("e"));
  ASSERT_TRUE(loaded(*view));
  EXPECT_FALSE(view->loadedImage()->isDecoded());
  setImageResponseSerializer(*view, nullptr);
  EXPECT_NE(imageResponseSerializer(*view), serializer);
}

TEST(NKImageCacheTest, PoliciesKeysAndCost) {
  platform::NotificationCenter center;  // outlives the cache that observes it
  NKImageCache cache(1000);
  auto image = Image::imageWithData(test::png(4, 4), 1);  // cost: its encoded bytes
  NKURLRequest request("http://127.0.0.1:9/x.png");
  cache.cacheImage(image, request);
  cache.cacheImage(nullptr, NKURLRequest("http://127.0.0.1:9/y.png"));
  cache.cacheImage(image, NKURLRequest("no url"));
  EXPECT_EQ(cache.count(), 1u);
  EXPECT_EQ(cache.cachedImageForRequest(request), image);
  for (int policy : {1, 4}) {
    NKURLRequest ignoring = request;
    ignoring.cachePolicy = policy;
    EXPECT_EQ(cache.cachedImageForRequest(ignoring), nullptr);
  }
  NKURLRequest other = request;
  other.cachePolicy = 2;
  EXPECT_EQ(cache.cachedImageForRequest(other), image);

  // Over the limit, the least recently used goes first.
  const size_t each = image->byteCost();
  const int fit = static_cast<int>(1000 / each);
  for (int i = 0; i < fit; ++i) cache.cacheImage(image, NKURLRequest("http://127.0.0.1:9/" + std::to_string(i)));
  EXPECT_LE(cache.totalCost(), 1000u);
  EXPECT_EQ(cache.cachedImageForRequest(request), nullptr);
  EXPECT_EQ(cache.cachedImageForRequest(NKURLRequest("http://127.0.0.1:9/" + std::to_string(fit - 1))), image);

  cache.emptyOnMemoryWarning(center);
  center.post(platform::Application::kDidReceiveMemoryWarningNotification);
  EXPECT_EQ(cache.count(), 0u);
}

}  // namespace
}  // namespace quillet::http
