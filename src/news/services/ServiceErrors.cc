#include "news/services/ServiceErrors.h"

namespace quillet::news {

platform::Error serviceError(const char* domain, int64_t code, const std::string& description) {
  return platform::Error::withDescription(domain, code, description);
}

}  // namespace quillet::news
