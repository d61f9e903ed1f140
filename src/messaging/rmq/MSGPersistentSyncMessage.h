#pragma once

#include <cstdint>
#include <string>

namespace quillet::messaging {

// A row of the de-duplication table: a message that may arrive by both the
// relay and the platform's push path, and which of the two brought it.
struct MSGPersistentSyncMessage {
  std::string rmqID;
  int64_t expirationTime = 0;  // seconds since 1970
  bool apnsReceived = false;
  bool relayReceived = false;
};

}  // namespace quillet::messaging
