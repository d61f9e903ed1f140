#include "messaging/rmq/MSGRmqManager.h"

#include <algorithm>
#include <cstdlib>

#include "messaging/schema/MSGUtilities.h"

namespace quillet::messaging {

MSGRmqManager::MSGRmqManager(std::string databaseName, std::shared_ptr<platform::FileSystem> fileSystem,
                             std::shared_ptr<platform::Clock> clock)
    : rmq2Store_(
          std::make_unique<MSGRmq2PersistentStore>(std::move(databaseName), std::move(fileSystem), std::move(clock))) {}

void MSGRmqManager::loadRmqId() {
  if (rmqId_ >= 0) return;
  int64_t highest = queryHighestRmqId();
  if (highest == 0) highest = querylastRmqId();
  rmqId_ = highest + 1;
}

int64_t MSGRmqManager::nextRmqId() { return ++rmqId_; }

bool MSGRmqManager::saveRmqMessage(MSGProtoMessage& message, platform::Error* error) {
  auto persistentId = MSGUtilities::persistentIdForProto(message);
  int64_t rmqId = 0;
  if (!persistentId || persistentId->empty()) {
    rmqId = nextRmqId();
    MSGUtilities::setPersistentIdForProto(message, std::to_string(rmqId));
  } else {
    rmqId = std::strtoll(persistentId->c_str(), nullptr, 10);
  }
  return saveMessage(message, rmqId, MSGUtilities::tagForProto(message), error);
}

bool MSGRmqManager::saveMessage(const MSGProtoMessage& message, int64_t rmqId, int8_t tag, platform::Error* error) {
  std::string bytes = message.SerializePartialAsString();
  return rmq2Store_->saveMessageWithRmqId(rmqId, tag, {reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()},
                                          error);
}

bool MSGRmqManager::saveLastOutgoingRmqId(int64_t rmqId) { return rmq2Store_->updateLastOutgoingRmqId(rmqId); }

bool MSGRmqManager::saveS2dMessageWithRmqId(const std::string& rmqId) {
  return rmq2Store_->saveUnackedS2dMessageWithRmqId(rmqId);
}

int64_t MSGRmqManager::queryHighestRmqId() { return rmq2Store_->queryHighestRmqId(); }
int64_t MSGRmqManager::querylastRmqId() { return rmq2Store_->queryLastRmqId(); }
std::vector<std::string> MSGRmqManager::unackedS2dRmqIds() { return rmq2Store_->unackedS2dRmqIds(); }

void MSGRmqManager::scanWithRmqMessageHandler(const RmqMessageHandler& rmqHandler,
                                              const DataMessageHandler& dataHandler) {
  if (!rmqHandler && !dataHandler) return;
  rmq2Store_->scanOutgoingRmqMessagesWithHandler([&](int64_t rmqId, int8_t tag, const std::vector<uint8_t>& data) {
    if (rmqHandler) rmqHandler(rmqId, tag, data);
    if (tag == kMSGProtoTagDataMessageStanza && dataHandler) {
      RelayDataMessageStanza stanza;
      stanza.ParsePartialFromArray(data.data(), static_cast<int>(data.size()));
      dataHandler(rmqId, stanza);
    }
  });
}

int MSGRmqManager::removeRmqMessagesWithRmqId(const std::string& rmqId) { return removeRmqMessagesWithRmqIds({rmqId}); }

int MSGRmqManager::removeRmqMessagesWithRmqIds(const std::vector<std::string>& rmqIds) {
  if (rmqIds.empty()) return 0;
  int64_t highest = 0;
  for (const auto& rmqId : rmqIds) {
    ackReceivedForRmqId(rmqId);
    highest = std::max(highest, static_cast<int64_t>(std::strtoll(rmqId.c_str(), nullptr, 10)));
  }
  // Keep the mark so that ids are not reused once the table is empty.
  const int64_t mark = highest + 1;
  if (mark >= rmqId_) saveLastOutgoingRmqId(mark);
  return rmq2Store_->deleteMessagesFromTable(MSGRmq2PersistentStore::kTableOutgoingRmqMessages, rmqIds);
}

int MSGRmqManager::removeS2dIds(const std::vector<std::string>& s2dIds) {
  return rmq2Store_->deleteMessagesFromTable(MSGRmq2PersistentStore::kTableS2dRmqIds, s2dIds);
}

void MSGRmqManager::ackReceivedForRmqId(const std::string&) {}

std::optional<MSGPersistentSyncMessage> MSGRmqManager::querySyncMessageWithRmqID(const std::string& rmqID) {
  return rmq2Store_->querySyncMessageWithRmqID(rmqID);
}

int MSGRmqManager::deleteExpiredOrFinishedSyncMessages(platform::Error* error) {
  return rmq2Store_->deleteExpiredOrFinishedSyncMessages(error);
}

bool MSGRmqManager::saveSyncMessageWithRmqID(const std::string& rmqID, int64_t expirationTime, bool apnsReceived,
                                             bool relayReceived, platform::Error* error) {
  return rmq2Store_->saveSyncMessageWithRmqID(rmqID, expirationTime, apnsReceived, relayReceived, error);
}

bool MSGRmqManager::updateSyncMessageViaAPNSWithRmqID(const std::string& rmqID, platform::Error* error) {
  return rmq2Store_->updateSyncMessageViaAPNSWithRmqID(rmqID, error);
}

bool MSGRmqManager::updateSyncMessageViaRelayWithRmqID(const std::string& rmqID, platform::Error* error) {
  return rmq2Store_->updateSyncMessageViaRelayWithRmqID(rmqID, error);
}

bool MSGRmqManager::deleteSyncMessageWithRmqID(const std::string& rmqID) {
  return rmq2Store_->deleteSyncMessageWithRmqID(rmqID);
}

void MSGRmqManager::removeDatabaseWithName(const std::string& databaseName) {
  rmq2Store_->removeDatabase(databaseName);
}

}  // namespace quillet::messaging
