#include "news/driver/PageGestures.h"

#include <charconv>

#include "news/home/HomeSharing.h"
#include "news/home/HomeVC.h"
#include "news/player/InlinePlayerView.h"
#include "platform/ui/ActivityViewController.h"
#include "platform/ui/ComposeViewController.h"
#include "platform/ui/MailComposeViewController.h"
#include "platform/ui/UiDriver.h"
#include "platform/ui/UiError.h"
#include "platform/ui/WebView.h"
#include "platform/ui/Window.h"
#include "platform/value/Format.h"

namespace quillet::news {

namespace {

bool fail(platform::Error* error, const std::string& message) {
  return platform::uiError(error, platform::UiErrorCode::BadPath, message);
}

// The argument's first word, and the rest after the spaces that follow it.
std::pair<std::string, std::string> splitFirst(const std::string& argument) {
  const size_t space = argument.find(' ');
  if (space == std::string::npos) return {argument, ""};
  const size_t rest = argument.find_first_not_of(' ', space);
  return {argument.substr(0, space), rest == std::string::npos ? "" : argument.substr(rest)};
}

// The first web view in `root`'s tree that is on show, depth first.
std::shared_ptr<platform::WebView> visibleWebView(const std::shared_ptr<platform::View>& root) {
  if (!root || root->isHidden() || root->alpha() <= 0.01) return nullptr;
  if (auto web = std::dynamic_pointer_cast<platform::WebView>(root)) return web;
  for (const auto& child : root->subviews()) {
    if (auto web = visibleWebView(child)) return web;
  }
  return nullptr;
}

}  // namespace

bool PageGestures::type(const std::string& argument, platform::Error* error) {
  // The text is taken as given, blanks and all: only the one space after the field's name separates.
  const size_t space = argument.find(' ');
  const std::string field = argument.substr(0, space);
  if (field.empty()) return fail(error, "needs a field and a text");
  const std::string text = space == std::string::npos ? "" : argument.substr(space + 1);
  return platform::UiDriver(application_).setText(field, text, error);
}

bool PageGestures::pressReturn(const std::string& field, platform::Error* error) {
  if (field.empty()) return fail(error, "needs a field");
  return platform::UiDriver(application_).pressReturn(field, error);
}

bool PageGestures::edit(const std::string& field, bool begin, platform::Error* error) {
  if (field.empty()) return fail(error, "needs a field");
  return platform::UiDriver(application_).setEditing(field, begin, error);
}

bool PageGestures::share(const std::string& tag, platform::Error* error) {
  int value = 0;
  auto [end, ec] = std::from_chars(tag.data(), tag.data() + tag.size(), value);
  if (tag.empty() || ec != std::errc() || end != tag.data() + tag.size()) return fail(error, "needs a tag number");
  auto home = std::dynamic_pointer_cast<HomeVC>(application_.window().topScreen());
  if (!home || !home->isViewLoaded()) return fail(error, "the feed is not on show");
  home->sharing().btnShareType(value);
  return true;
}

bool PageGestures::pageEvent(const std::string& argument, platform::Error* error) {
  auto [host, data] = splitFirst(argument);
  if (host.empty()) return fail(error, "needs an event name");
  auto screen = application_.window().topScreen();
  auto webView = screen ? visibleWebView(screen->view()) : nullptr;
  if (!webView) return fail(error, "no web view is on show");
  const std::string url = data.empty()
                              ? platform::format("%@://%@", InlinePlayerView::kCallbackScheme, host)
                              : platform::format("%@://%@?data=%@", InlinePlayerView::kCallbackScheme, host, data);
  webView->navigate(url, platform::WebNavigationType::Other);
  return true;
}

bool PageGestures::closeSheet(platform::Error* error) {
  auto top = application_.window().topScreen();
  const bool isSheet = std::dynamic_pointer_cast<platform::ActivityViewController>(top) ||
                       std::dynamic_pointer_cast<platform::ComposeViewController>(top);
  if (!isSheet || !top->presentingViewController()) return fail(error, "no share sheet or composer is on show");
  top->dismissViewControllerAnimated(true);
  return true;
}

bool PageGestures::finishMail(const std::string& result, platform::Error* error) {
  using platform::MailComposeResult;
  MailComposeResult outcome;
  if (result == "sent") {
    outcome = MailComposeResult::Sent;
  } else if (result == "saved") {
    outcome = MailComposeResult::Saved;
  } else if (result == "cancelled") {
    outcome = MailComposeResult::Cancelled;
  } else if (result == "failed") {
    outcome = MailComposeResult::Failed;
  } else {
    return fail(error, "sent, saved, cancelled or failed");
  }
  auto mail = std::dynamic_pointer_cast<platform::MailComposeViewController>(application_.window().topScreen());
  if (!mail) return fail(error, "no mail composer is on show");
  if (outcome != MailComposeResult::Failed) {
    mail->finishWithResult(outcome);
    return true;
  }
  const platform::Error sendError =
      platform::Error::withDescription("MFMailComposeErrorDomain", 1, "The mail could not be sent.");
  mail->finishWithResult(outcome, &sendError);
  return true;
}

}  // namespace quillet::news
