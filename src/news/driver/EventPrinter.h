#pragma once

#include <functional>

#include <ostream>
#include <string>

#include "platform/ui/UiEvent.h"
#include "platform/value/Value.h"

namespace quillet::news {

// Writes the driver's events, one a line: as a JSON object with an "event"
// field, or as text: the event name, then the other fields as compact JSON.
// The stream is held by reference and outlives the printer. Main thread.
class EventPrinter {
 public:
  EventPrinter(std::ostream& out, bool json) : out_(out), json_(json) {}

  // With a time source, every event carries "time": its seconds, to the millisecond.
  void setTimeSource(std::function<double()> now) { now_ = std::move(now); }

  // `fields` is a dictionary (or nil) without "event".
  void print(const std::string& event, platform::Value fields = platform::Value());
  // A UI event, named by its kind.
  void print(const platform::UiEvent& event);

 private:
  std::ostream& out_;
  bool json_;
  std::function<double()> now_;
};

}  // namespace quillet::news
