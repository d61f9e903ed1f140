#include "news/support/Utilitiys.h"

#include <optional>

#include "http/reachability/Reachability.h"
#include "platform/runloop/RunLoop.h"
#include "platform/text/DateFormatter.h"
#include "platform/ui/AlertController.h"
#include "platform/ui/Application.h"
#include "platform/ui/Button.h"
#include "platform/ui/ImageView.h"
#include "platform/ui/Label.h"
#include "platform/ui/Window.h"

namespace quillet::news {

namespace {

constexpr double kHeaderHeight = 64;
constexpr double kLineWidth = 0.5;

// `text` read with one pattern and written with another, both at GMT in "en_US_POSIX".
std::string reformat(const std::string& text, const char* from, const char* to) {
  auto parser = platform::DateFormatter::create(from, "en_US_POSIX", "GMT");
  auto writer = platform::DateFormatter::create(to, "en_US_POSIX", "GMT");
  if (!parser || !writer) return {};
  std::optional<double> date = parser->parse(text);
  return date ? writer->format(*date) : std::string();
}

}  // namespace

bool Utilitiys::isConnectedToInternet() {
  // The status is read synchronously, so a started notifier would change nothing here.
  auto reachability = http::Reachability::reachabilityForInternetConnection();
  return reachability->currentReachabilityStatus() != http::Reachability::NotReachable;
}

void Utilitiys::message(const std::string& message, const std::string& title) {
  platform::RunLoop::main().post([message, title] {
    auto top = platform::Application::sharedApplication().window().topScreen();
    if (!top) return;
    auto alert = platform::AlertController::alertControllerWithTitle(title, message);
    alert->addAction(platform::AlertAction{"OK", platform::AlertActionStyle::Default, nullptr});
    top->presentViewController(alert, true);
  });
}

std::string Utilitiys::getCurrentDate() {
  auto formatter = platform::DateFormatter::createForDevice("yyyy-MM-dd");
  return formatter ? formatter->format(platform::RunLoop::main().clock()->wallSeconds()) : std::string();
}

std::string Utilitiys::convert(const std::string& date) { return reformat(date, "dd-MM-yyyy", "dd MMMM,EEEE"); }

std::string Utilitiys::convertTime(const std::string& time) { return reformat(time, "HH:mm:ss", "hh:mm a"); }

std::shared_ptr<platform::View> Utilitiys::CustomNavigationBarWithTitle(const std::string& title, double width,
                                                                        std::function<void()> backbuttonAction) {
  auto header = std::make_shared<platform::View>("customNavigationBar");
  header->setFrame(platform::Rect{0, 0, width, kHeaderHeight});
  auto logo = std::make_shared<platform::ImageView>("logo");
  logo->setImageNamed("logo_c.png");
  auto label = std::make_shared<platform::Label>("title");
  label->setText(title);
  auto back = std::make_shared<platform::Button>("back");
  back->setImageNamed("back.png");
  back->setAction([action = std::move(backbuttonAction)](platform::Button&) {
    if (action) action();
  });
  header->addSubview(logo);
  header->addSubview(label);
  header->addSubview(back);
  return header;
}

void Utilitiys::SetLayer(platform::View& view) {
  const platform::Rect bounds = view.frame().value_or(platform::Rect{});
  const std::pair<const char*, platform::Rect> edges[] = {
      {"edgeTop", {0, 0, bounds.width, kLineWidth}},
      {"edgeBottom", {0, bounds.height - kLineWidth, bounds.width, kLineWidth}},
      {"edgeLeft", {0, 0, kLineWidth, bounds.height}},
      {"edgeRight", {bounds.width - kLineWidth, 0, kLineWidth, bounds.height}}};
  for (const auto& [name, frame] : edges) {
    auto line = std::make_shared<platform::View>(name);
    line->setFrame(frame);
    line->setBackgroundColor(platform::Color::lightGrayColor());
    view.addSubview(line);
  }
}

}  // namespace quillet::news
