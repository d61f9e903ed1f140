#pragma once

#include <string>

#include "platform/value/Value.h"

namespace quillet::news {

// Every row of the local news file's two tables, for the driver's
// store-dump: {"news_table": [...], "bookmark_table": [...]}, each row a
// dictionary of every column (text, or null for a NULL column), in the
// order the rows were stored. A file that cannot be read gives nil and
// `problem` says why. Main thread.
platform::Value dumpNewsStore(const std::string& path, std::string* problem);

}  // namespace quillet::news
