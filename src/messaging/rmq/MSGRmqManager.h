#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "messaging/schema/MSGProto.h"

#include "messaging/rmq/MSGRmq2PersistentStore.h"
#include "messaging/schema/Relay.pb.h"

namespace quillet::messaging {

// The reliable queue above its SQLite store: allocates rmq ids, saves
// outgoing messages by type, removes what the server confirmed (keeping the
// high-water mark so ids never repeat), keeps the received ids not yet
// confirmed as reported, and scans what is left in sending order.
//
// Thread: the main run loop only. Owns its store.
class MSGRmqManager {
 public:
  using RmqMessageHandler = MSGRmq2PersistentStore::RmqMessageHandler;
  using DataMessageHandler = std::function<void(int64_t rmqId, const RelayDataMessageStanza& stanza)>;

  MSGRmqManager(std::string databaseName, std::shared_ptr<platform::FileSystem> fileSystem,
                std::shared_ptr<platform::Clock> clock = nullptr);

  // Loads the counter once: the highest stored id, else the saved mark, plus one.
  void loadRmqId();
  // The next id (the counter plus one).
  int64_t nextRmqId();
  int64_t rmqId() const { return rmqId_; }

  // Gives the message a persistent id when it has none, then saves it.
  bool saveRmqMessage(MSGProtoMessage& message, platform::Error* error);
  bool saveMessage(const MSGProtoMessage& message, int64_t rmqId, int8_t tag, platform::Error* error);
  bool saveLastOutgoingRmqId(int64_t rmqId);
  bool saveS2dMessageWithRmqId(const std::string& rmqId);
  int64_t queryHighestRmqId();
  int64_t querylastRmqId();
  std::vector<std::string> unackedS2dRmqIds();
  // Walks the stored outgoing messages in id order; data stanzas also go,
  // parsed, to the second handler. Nothing when both are null.
  void scanWithRmqMessageHandler(const RmqMessageHandler& rmqHandler, const DataMessageHandler& dataHandler);

  // Removes confirmed outgoing messages; the count removed.
  int removeRmqMessagesWithRmqId(const std::string& rmqId);
  int removeRmqMessagesWithRmqIds(const std::vector<std::string>& rmqIds);
  int removeS2dIds(const std::vector<std::string>& s2dIds);
  void ackReceivedForRmqId(const std::string& rmqId);

  // The de-duplication table.
  std::optional<MSGPersistentSyncMessage> querySyncMessageWithRmqID(const std::string& rmqID);
  int deleteExpiredOrFinishedSyncMessages(platform::Error* error);
  bool saveSyncMessageWithRmqID(const std::string& rmqID, int64_t expirationTime, bool apnsReceived, bool relayReceived,
                                platform::Error* error);
  bool updateSyncMessageViaAPNSWithRmqID(const std::string& rmqID, platform::Error* error);
  bool updateSyncMessageViaRelayWithRmqID(const std::string& rmqID, platform::Error* error);
  bool deleteSyncMessageWithRmqID(const std::string& rmqID);

  void removeDatabaseWithName(const std::string& databaseName);
  MSGRmq2PersistentStore& store() { return *rmq2Store_; }

 private:
  std::unique_ptr<MSGRmq2PersistentStore> rmq2Store_;
  int64_t rmqId_ = -1;
};

}  // namespace quillet::messaging
