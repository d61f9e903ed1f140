#include "news/api/WebmanagerDelegate.h"

namespace quillet::news {

void WebmanagerDelegate::performOperation(const std::string& name, const platform::Value& reply) {
  auto found = operations_.find(name);
  if (found != operations_.end() && found->second) found->second(reply);
}

}  // namespace quillet::news
