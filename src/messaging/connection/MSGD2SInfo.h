#pragma once

#include <cstdint>
#include <string>

namespace quillet::messaging {

// A sent message that carries a persistent id: the output stream id it went
// out with, and that id.
struct MSGD2SInfo {
  int32_t streamId = 0;
  std::string d2sID;
};

}  // namespace quillet::messaging
