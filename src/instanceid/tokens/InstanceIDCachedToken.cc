#include "instanceid/tokens/InstanceIDCachedToken.h"

namespace quillet::instanceid {

bool InstanceIDCachedToken::isValid() const { return token && !token->empty() && status == StatusUsable; }

}  // namespace quillet::instanceid
