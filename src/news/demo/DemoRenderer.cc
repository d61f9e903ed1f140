#include "news/demo/DemoRenderer.h"

#include <algorithm>

#include "news/demo/WordWrap.h"
#include "platform/value/Format.h"

namespace quillet::news {

using platform::Value;

namespace {

// `tag` followed by `body`, built by appending.
std::string tagged(const char* tag, const std::string& body) {
  std::string line = tag;
  return line.append(body);
}

// The text of a value that should be a string; other values as their description.
std::string text(const Value& value) {
  if (value.isString()) return value.string();
  if (value.isNil()) return "";
  return value.description();
}

const Value::Array& items(const Value& value) {
  static const Value::Array none;
  return value.isArray() ? value.arrayItems() : none;
}

std::string joinTitles(const Value& actions) {
  std::string out;
  for (const Value& action : items(actions)) {
    if (!out.empty()) out.append(", ");
    out.append(text(action["title"]));
  }
  return out;
}

std::string alertLine(const std::string& title, const Value& alert) {
  std::string line = "[alert] ";
  line.append(title);
  const std::string message = text(alert["message"]);
  if (!title.empty() && !message.empty()) line.append(": ");
  line.append(message);
  const std::string buttons = joinTitles(alert["actions"]);
  if (!buttons.empty()) line.append(" \xE2\x80\x94 buttons: ").append(buttons);
  return line;
}

void appendWrapped(std::string& out, const std::string& body, int columns, const std::string& indent = "") {
  const int width = std::max(columns - static_cast<int>(indent.size()), 10);
  for (const std::string& line : WordWrap::lines(body, width)) out.append(indent).append(line).append("\n");
}

std::string rule(const std::string& heading, int columns) {
  std::string line = "== ";
  line.append(heading).append(" ");
  const size_t used = WordWrap::characters(line);
  for (size_t i = used; i < static_cast<size_t>(std::max(columns, 20)); ++i) line.push_back('=');
  return line.append("\n");
}

std::string mediumLine(const Value& medium) {
  const std::string kind = text(medium["kind"]);
  if (kind == "image") return tagged("image: ", text(medium["url"].isNil() ? medium["image"] : medium["url"]));
  if (kind == "video") {
    std::string line = "video: ";
    line.append(medium["playing"].isBool() && medium["playing"].boolValue() ? "playing" : "press v to play");
    return line;
  }
  if (kind == "inlineVideo") {
    std::string line = tagged("inline video: ", text(medium["videoId"]));
    return line.append(" (").append(text(medium["state"])).append(")");
  }
  return "";
}

void drawPanel(std::string& out, const char* name, const Value& rows, int columns) {
  if (rows.isNil()) return;
  out.append(name).append(" (type a number, x to close):\n");
  int number = 0;
  for (const Value& row : items(rows)) {
    appendWrapped(out, platform::format("%3d  %@", number++, text(row)), columns, "  ");
  }
}

void drawFeed(std::string& out, const Value& feed, int columns) {
  const Value& card = feed["card"];
  const std::string title = text(card["title"]);
  if (title.empty() && feed["listSize"].integerValue() == 0) {
    out.append("(no stories in this feed yet)\n");
  } else {
    appendWrapped(out, title, columns);
    const std::string postedBy = text(card["postedBy"]);
    if (!postedBy.empty()) appendWrapped(out, postedBy, columns);
    out.append("\n");
    appendWrapped(out, text(card["body"]), columns);
    const std::string medium = mediumLine(card["media"]);
    if (!medium.empty()) out.append("\n").append(medium).append("\n");
  }
  std::string position =
      platform::format("card %lld of %lld", feed["count"].integerValue() + 1, feed["listSize"].integerValue());
  if (feed["bookmark"].isBool() && feed["bookmark"].boolValue()) position.append("  (bookmarked)");
  out.append(position).append("\n");
  drawPanel(out, "Menu", feed["menu"], columns);
  drawPanel(out, "Options", feed["options"], columns);
}

// A row of a table as the snapshot describes it: its own text, or the texts
// of its labels, with [x] or [ ] for a check box.
std::string rowText(const Value& row) {
  std::string mark;
  std::string label = text(row["text"]);
  if (row["views"].isDictionary()) {
    for (const auto& [name, view] : row["views"].dictionaryItems()) {
      const std::string kind = text(view["kind"]);
      if (view["hidden"].isBool() && view["hidden"].boolValue()) continue;
      if (kind == "label" && !text(view["text"]).empty()) {
        if (!label.empty()) label.append("  ");
        label.append(text(view["text"]));
      }
      const std::string image = text(view["image"]);
      if (kind == "button" && (image == "Checked" || image == "Unchecked")) mark = image == "Checked" ? "[x] " : "[ ] ";
    }
  }
  return mark.append(label);
}

std::string rowNumber(const Value& row) {
  const std::string path = text(row["indexPath"]);
  const size_t dot = path.find('.');
  return path.substr(0, dot) == "0" ? path.substr(dot + 1) : path;
}

// Any other screen: its labels on show, its text fields and boxes by name,
// a web page's address, then the rows of its tables on show.
void drawScreen(std::string& out, const Value& outlets, int columns) {
  if (!outlets.isDictionary()) return;
  for (const auto& [name, view] : outlets.dictionaryItems()) {
    if (text(view["kind"]) != "label" || view["hidden"].boolValue()) continue;
    if (!text(view["text"]).empty()) appendWrapped(out, text(view["text"]), columns);
  }
  for (const auto& [name, view] : outlets.dictionaryItems()) {
    const std::string kind = text(view["kind"]);
    if (view["hidden"].boolValue() || (!view["alpha"].isNil() && view["alpha"].doubleValue() <= 0.01)) continue;
    if (kind == "textField" || kind == "textView")
      appendWrapped(out, tagged("[", name).append("] ").append(text(view["text"])), columns);
    if (kind == "webView") appendWrapped(out, tagged("[page] ", text(view["url"])), columns);
    if (kind == "progressHUD") appendWrapped(out, tagged("[", text(view["labelText"])).append("]"), columns);
  }
  for (const auto& [name, view] : outlets.dictionaryItems()) {
    if (text(view["kind"]) != "table" || view["hidden"].boolValue()) continue;
    for (const Value& row : items(view["rows"])) {
      std::string line = rowNumber(row);
      line.insert(0, line.size() < 3 ? 3 - line.size() : 0, ' ');
      line.append("  ").append(rowText(row));
      appendWrapped(out, line, columns, "  ");
    }
    const int64_t total = view["rowCount"].integerValue();
    if (total > static_cast<int64_t>(items(view["rows"]).size())) {
      out.append(platform::format("  (%lld rows; scroll 3 or scroll -3 for more)\n", total));
    }
  }
}

}  // namespace

std::string DemoRenderer::event(const Value& event) {
  const std::string name = text(event["event"]);
  const std::string body = text(event["text"]);
  if (name == "toast") return tagged("[toast] ", body);
  if (name == "alertShown") return alertLine(body, event["info"]);
  if (name == "alertDismissed") return body.empty() ? "[alert closed]" : tagged("[alert closed] ", body);
  if (name == "urlOpened") return tagged("[opened] ", body);
  if (name == "openInMenuShown") return tagged("[open in] ", body);
  if (name == "screenshot") return tagged("[screenshot] ", text(event["file"]));
  if (name == "screenPushed" || name == "screenPresented" || name == "screenReplaced" || name == "stackReplaced") {
    return tagged("[screen] ", text(event["screen"]));
  }
  if (name == "screenPopped" || name == "screenDismissed") {
    std::string line = "[screen] back to ";
    return line.append(text(event["previous"]));
  }
  if (name == "badgeChanged") return platform::format("[badge] %lld", event["number"].integerValue());
  if (name == "localNotificationScheduled") return tagged("[notification] ", body);
  if (name == "remoteNotificationsRegistered") {
    return event["number"].integerValue() == 1 ? "[push] registered" : "[push] unregistered";
  }
  if (name == "terminated") return tagged("[terminated] the app ended: ", text(event["reason"]));
  if (name == "error") return tagged("[error] ", text(event["message"]));
  if (name == "network") return tagged("[network] ", text(event["mode"]));
  if (name == "log") return tagged("[log] ", text(event["message"]));
  if (name == "memoryWarning") return "[memory warning]";
  if (name == "requestSucceeded" || name == "requestFailed") {
    std::string line = "[request] ";
    line.append(text(event["method"])).append(name == "requestSucceeded" ? " succeeded" : " failed");
    return line;
  }
  if (name == "defaults") {
    std::string lines = "[defaults]";
    if (event["values"].isDictionary()) {
      for (const auto& [key, value] : event["values"].dictionaryItems()) {
        lines.append("\n  ").append(key).append(" = ").append(platform::format("%@", value));
      }
    }
    return lines;
  }
  // "screen" is drawn after every command anyway; "quit" and the
  // registration of notification settings say nothing to the reader.
  return "";
}

std::string DemoRenderer::screen(const Value& snapshot, const Value& feed, int columns) {
  std::string out;
  const std::string screenName = text(snapshot["screen"]);
  std::string heading = screenName.empty() ? std::string("no screen") : screenName;
  std::string title = feed.isNil() ? text(snapshot["title"]) : text(feed["feedTitle"]);
  if (title.empty() && !feed.isNil()) title = text(feed["feedMode"]);
  if (!title.empty()) heading.append(" \xC2\xB7 ").append(title);
  out.append(rule(heading, columns));
  if (!feed.isNil()) {
    drawFeed(out, feed, columns);
  } else {
    drawScreen(out, snapshot["outlets"], columns);
  }
  if (snapshot["alert"].isDictionary()) {
    appendWrapped(out, alertLine(text(snapshot["alert"]["title"]), snapshot["alert"]), columns);
    out.append("(to answer: alert-tap BUTTON)\n");
  }
  return out;
}

}  // namespace quillet::news
