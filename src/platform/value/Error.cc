#include "platform/value/Error.h"

namespace quillet::platform {

Error Error::withDescription(std::string domain, int64_t code, std::string description) {
  return Error(std::move(domain), code, Value::dictionary({{"NSLocalizedDescription", Value(std::move(description))}}));
}

std::string Error::localizedDescription() const {
  const Value& text = userInfo["NSLocalizedDescription"];
  if (text.isString()) return text.string();
  // The general domain of the phone's frameworks is named by its short name.
  std::string name = domain == "NSCocoaErrorDomain" ? "Cocoa" : domain;
  return "The operation couldn\u2019t be completed. (" + name + " error " + std::to_string(code) + ".)";
}

std::string Error::description() const {
  std::string out = "Error Domain=" + domain + " Code=" + std::to_string(code) + " \"" + localizedDescription() + "\"";
  if (userInfo.isDictionary() && !userInfo.dictionaryItems().empty()) {
    out += " UserInfo={";
    bool first = true;
    for (const auto& [key, value] : userInfo.dictionaryItems()) {
      if (!first) out += ", ";
      first = false;
      out += key + "=" + value.description();
    }
    out += "}";
  }
  return out;
}

}  // namespace quillet::platform
