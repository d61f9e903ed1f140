#include "news/card/NewsCard.h"

#include <map>
#include <optional>

#include "platform/text/DateFormatter.h"
#include "platform/text/DeviceLocale.h"
#include "platform/text/RegularExpression.h"
#include "platform/value/Format.h"

namespace quillet::news {

using platform::Value;

namespace {

constexpr const char* kNullText = "<null>";
constexpr const char* kNilText = "(null)";

// A text field with the "<null>" rule: a JSON null or an empty text shows nothing.
std::string textOrEmpty(const Value& value) {
  std::string text = platform::format("%@", value);
  if (text == kNullText) return {};
  return text;
}

// A formatter of the device's locale and time zone for `pattern`, made once
// per thread and made again when the device's locale or time zone changes.
const platform::DateFormatter* deviceFormatter(const std::string& pattern) {
  thread_local std::map<std::string, std::optional<platform::DateFormatter>> formatters;
  const std::string key =
      pattern + "|" + platform::DeviceLocale::localeId() + "|" + platform::DeviceLocale::timeZoneId();
  auto found = formatters.find(key);
  if (found == formatters.end()) {
    found = formatters.emplace(key, platform::DateFormatter::createForDevice(pattern)).first;
  }
  return found->second ? &*found->second : nullptr;
}

// The formatter's output, or "(null)" when there is no date or no formatter, as "%@" shows a nil text.
std::string formatDate(const std::optional<double>& date, const char* pattern) {
  if (!date) return kNilText;
  const platform::DateFormatter* formatter = deviceFormatter(pattern);
  return formatter ? formatter->format(*date) : kNilText;
}

const char* daySuffixFormat(const std::string& day) {
  for (const char* first : {"1", "01", "21", "31"}) {
    if (day == first) return "%@st";
  }
  for (const char* second : {"2", "02", "22"}) {
    if (day == second) return "%@nd";
  }
  for (const char* third : {"3", "03", "23"}) {
    if (day == third) return "%@rd";
  }
  return "%@th";
}

bool containsValue(const Value& list, const Value& value) {
  if (!list.isArray()) return false;
  for (const Value& item : list.arrayItems()) {
    if (item == value) return true;
  }
  return false;
}

const platform::RegularExpression* videoIdExpression() {
  static const std::optional<platform::RegularExpression> expression = [] {
    std::string pattern = "(?<=v(=|/))([-a-zA-Z0-9_]+)|(?<=";
    pattern += NewsCard::kShortLinkHost;
    pattern += "/)([-a-zA-Z0-9_]+)";
    return platform::RegularExpression::create(pattern, platform::RegularExpression::kCaseInsensitive);
  }();
  return expression ? &*expression : nullptr;
}

}  // namespace

std::string NewsCard::dateText(const Value& createdDate) {
  std::optional<double> date;
  if (const platform::DateFormatter* parser = deviceFormatter("yyyy-MM-dd")) {
    date = parser->parse(platform::format("%@", createdDate));
  }
  const std::string day = formatDate(date, "dd");
  const std::string dayText = platform::format(daySuffixFormat(day), day);
  return platform::format("%@ %@", dayText, formatDate(date, "MMM yyyy"));
}

std::string NewsCard::videoIdFromLink(const std::string& link) {
  const platform::RegularExpression* expression = videoIdExpression();
  if (expression == nullptr) return {};
  auto match = expression->firstMatch(link);
  return match ? match->text() : std::string();
}

NewsCardContent NewsCard::make(const Value& item, const std::string& strMode, const std::string& strImageType,
                               const Value& bookmarkedIDs) {
  NewsCardContent card;
  const platform::Color plain = strMode == "Night" ? platform::Color::whiteColor() : platform::Color::blackColor();
  card.bookmarked = containsValue(bookmarkedIDs, item["id"]);
  card.titleColor = card.bookmarked ? platform::Color::redColor() : plain;
  card.body = textOrEmpty(item["news_description"]);
  card.title = textOrEmpty(item["new_title"]);
  card.postedBy = platform::format("Posted By %@ | %@", item["content_manger_name"], dateText(item["created_date"]));
  card.link = platform::format("%@", item["news_source_url"]);
  card.mediaType = platform::format("%@", item["news_media_type"]);

  if (card.mediaType == "Image") {
    card.media = NewsCardContent::Media::Image;
    card.barAlpha = 0.7;
    card.imageURL = platform::format("%@", item[strImageType == "HD" ? "news_image_hd" : "news_image_normal"]);
  } else if (card.mediaType == "Video") {
    card.media = NewsCardContent::Media::Video;
    card.videoURL = platform::format("%@", item["news_image_normal"]);
  } else if (card.mediaType == "YouTube Video") {
    card.media = NewsCardContent::Media::InlineVideo;
    card.videoId = videoIdFromLink(platform::format("%@", item["news_image_normal"]));
  }
  card.storyId = platform::format("%@", item["id"]);
  return card;
}

}  // namespace quillet::news
