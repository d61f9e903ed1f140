#pragma once

#include "platform/value/Value.h"

namespace quillet::news {

// The item at `index` of a news list. The feed reads its list with no guard,
// as the app always has: an index outside the list throws std::out_of_range,
// which ends the program. The message names the index as the 32-bit
// unsigned number the list sees ("index 4294967295 beyond bounds [0 .. 9]").
const platform::Value& newsItemAt(const platform::Value& list, int index);

}  // namespace quillet::news
