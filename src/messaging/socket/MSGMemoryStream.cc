#include "messaging/socket/MSGMemoryStream.h"

#include <algorithm>
#include <cstring>

namespace quillet::messaging {

using platform::TlsStreamEvent;

namespace {
constexpr int kStatusOpening = 1;
constexpr int kStatusOpen = 2;
constexpr int kStatusAtEnd = 5;
constexpr int kStatusClosed = 6;
constexpr int kStatusError = 7;
}  // namespace

MSGMemoryStream::MSGMemoryStream(platform::RunLoop& loop) : loop_(loop) {}

MSGMemoryStream::~MSGMemoryStream() { *alive_ = false; }

void MSGMemoryStream::setEventHandler(EventHandler handler) { handler_ = std::move(handler); }

bool MSGMemoryStream::open(const std::string& host, uint16_t port) {
  if (status_ != kStatusNotOpen) return false;
  host_ = host;
  port_ = port;
  status_ = kStatusOpening;
  return true;
}

void MSGMemoryStream::close() {
  handler_ = nullptr;
  status_ = kStatusClosed;
}

int MSGMemoryStream::status() const { return status_; }

bool MSGMemoryStream::hasBytesAvailable() const {
  return (status_ == kStatusOpen || status_ == kStatusAtEnd) && readOffset_ < incoming_.size();
}

bool MSGMemoryStream::hasSpaceAvailable() { return status_ == kStatusOpen && writeBudget_ > 0; }

ptrdiff_t MSGMemoryStream::read(uint8_t* buffer, size_t maxLength) {
  if (status_ != kStatusOpen && status_ != kStatusAtEnd) return -1;
  size_t count = std::min({maxLength, readChunkLimit_, incoming_.size() - readOffset_});
  if (count > 0) std::memcpy(buffer, incoming_.data() + readOffset_, count);
  readOffset_ += count;
  if (readOffset_ == incoming_.size()) {
    incoming_.clear();
    readOffset_ = 0;
  }
  return static_cast<ptrdiff_t>(count);
}

ptrdiff_t MSGMemoryStream::write(const uint8_t* data, size_t length) {
  if (status_ != kStatusOpen) return -1;
  size_t count = std::min(length, writeBudget_);
  written_.insert(written_.end(), data, data + count);
  writeBudget_ -= count;
  return static_cast<ptrdiff_t>(count);
}

void MSGMemoryStream::completeOpen() {
  if (status_ != kStatusOpening) return;
  status_ = kStatusOpen;
  post(TlsStreamEvent::OpenCompleted);
  post(TlsStreamEvent::HasSpaceAvailable);
}

void MSGMemoryStream::deliver(std::span<const uint8_t> bytes) {
  incoming_.insert(incoming_.end(), bytes.begin(), bytes.end());
  if (!bytesEventPending_) {
    bytesEventPending_ = true;
    post(TlsStreamEvent::HasBytesAvailable);
  }
}

void MSGMemoryStream::deliver(const std::string& bytes) {
  deliver(std::span<const uint8_t>(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()));
}

void MSGMemoryStream::grantSpace(size_t budget) {
  writeBudget_ = budget;
  post(TlsStreamEvent::HasSpaceAvailable);
}

void MSGMemoryStream::end() {
  if (status_ == kStatusOpen) status_ = kStatusAtEnd;
  post(TlsStreamEvent::EndEncountered);
}

void MSGMemoryStream::fail() {
  status_ = kStatusError;
  post(TlsStreamEvent::ErrorOccurred);
}

void MSGMemoryStream::post(TlsStreamEvent event) {
  loop_.post([this, event, alive = std::weak_ptr<bool>(alive_)] {
    auto flag = alive.lock();
    if (!flag || !*flag) return;
    if (event == TlsStreamEvent::HasBytesAvailable) bytesEventPending_ = false;
    if (!handler_) return;
    auto handler = handler_;  // the handler may destroy this object
    handler(event);
  });
}

}  // namespace quillet::messaging
