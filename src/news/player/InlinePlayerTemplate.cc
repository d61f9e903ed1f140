#include "news/player/InlinePlayerTemplate.h"

#include <fstream>
#include <sstream>

#include "platform/value/Format.h"
#include "platform/value/Json.h"

namespace quillet::news {
namespace {

using platform::Error;
using platform::Value;

Error fileError(int64_t code, const std::filesystem::path& path, const std::string& reason) {
  return Error("NSCocoaErrorDomain", code,
               Value::dictionary({{"NSFilePath", Value(path.string())}, {"NSLocalizedDescription", Value(reason)}}));
}

bool readFile(const std::filesystem::path& path, std::string* text) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  std::ostringstream buffer;
  buffer << in.rdbuf();
  if (in.bad()) return false;
  *text = buffer.str();
  return true;
}

// The JSON writer refuses a string that is not well-formed UTF-8.
bool isUTF8(const std::string& text) { return !platform::jsonEncode(Value::array({Value(text)})).empty(); }

std::string openingTag() {
  std::string tag = "<script id=\"";
  tag += InlinePlayerTemplate::kParamsElementId;
  tag += "\"";
  return tag;
}

}  // namespace

bool InlinePlayerTemplate::read(const std::filesystem::path& resourceDirectory, std::string* text, Error* error) {
  const std::string file = std::string(kName) + "." + kType;
  const std::filesystem::path candidates[] = {resourceDirectory / "Assets" / file,
                                              resourceDirectory / "Assets.bundle" / "Assets" / file};
  for (const auto& path : candidates) {
    std::string content;
    if (!readFile(path, &content)) continue;
    if (!isUTF8(content)) {
      if (error) {
        *error = fileError(
            261, path, platform::format("The file “%@” couldn’t be opened using text encoding Unicode (UTF-8).", file));
      }
      return false;
    }
    *text = std::move(content);
    return true;
  }
  if (error) {
    *error = fileError(260, candidates[0],
                       platform::format("The file “%@” couldn’t be opened because there is no such file.", file));
  }
  return false;
}

bool InlinePlayerTemplate::render(const std::string& templateText, const std::string& json, std::string* page,
                                  Error* error) {
  size_t placeholders = 0;
  for (size_t i = 0; i < templateText.size(); ++i) {
    if (templateText[i] != '%') continue;
    char next = i + 1 < templateText.size() ? templateText[i + 1] : '\0';
    if (next == '@') {
      ++placeholders;
    } else if (next != '%') {
      placeholders = 2;  // a stray percent sign: never a usable template
      break;
    }
    ++i;
  }
  if (placeholders != 1) {
    if (error) {
      std::string reason = "The template must hold one \"%@\" and only doubled percent signs besides.";
      *error = Error::withDescription("NSCocoaErrorDomain", 2048, reason);
    }
    return false;
  }
  *page = platform::format(templateText, Value(json));
  return true;
}

std::string InlinePlayerTemplate::paramsJSONInPage(const std::string& page) {
  size_t tag = page.find(openingTag());
  if (tag == std::string::npos) return "";
  size_t start = page.find('>', tag);
  if (start == std::string::npos) return "";
  ++start;
  size_t end = page.find("</script>", start);
  if (end == std::string::npos) return "";
  return page.substr(start, end - start);
}

}  // namespace quillet::news
