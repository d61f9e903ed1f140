#pragma once

// Runs driver scripts in process on virtual time and reads back their events.
#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "news/driver/PhoneSession.h"
#include "platform/runloop/RunLoop.h"
#include "platform/value/Json.h"

namespace quillet::news::testing {

struct PhoneRun {
  std::vector<platform::Value> events;
  int status = 0;

  std::vector<std::string> names() const {
    std::vector<std::string> out;
    for (const platform::Value& event : events) out.push_back(event["event"].string());
    return out;
  }
  // The events with that name, in order.
  std::vector<platform::Value> named(const std::string& name) const {
    std::vector<platform::Value> out;
    for (const platform::Value& event : events) {
      if (event["event"] == platform::Value(name)) out.push_back(event);
    }
    return out;
  }
};

// The events printed in `text`, one JSON object a line.
inline std::vector<platform::Value> decodeEvents(const std::string& text) {
  std::vector<platform::Value> events;
  std::istringstream lines(text);
  std::string line;
  while (std::getline(lines, line)) {
    platform::Value event = platform::jsonDecode(line);
    EXPECT_TRUE(event["event"].isString()) << line;
    events.push_back(event);
  }
  return events;
}

// Runs `script` in a new session (JSON events, virtual clock) over `options`.
inline PhoneRun playScript(PhoneOptions options, const std::string& script) {
  options.virtualClock = true;
  options.json = true;
  std::ostringstream out;
  PhoneRun run;
  {
    PhoneSession session(options, out);
    std::istringstream in(script);
    run.status = session.run(in);
  }
  platform::RunLoop::setMain(nullptr);
  run.events = decodeEvents(out.str());
  return run;
}

// A session played a few lines at a time, for scripts that look at the
// phone before they go on (JSON events, virtual clock).
class InteractivePhone {
 public:
  explicit InteractivePhone(PhoneOptions options)
      : session_(std::make_unique<PhoneSession>(withTestOutput(std::move(options)), out_)) {}
  ~InteractivePhone() {
    session_.reset();
    platform::RunLoop::setMain(nullptr);
  }

  // Runs the lines of `script`; the events they printed.
  PhoneRun play(const std::string& script) {
    std::istringstream in(script);
    std::string line;
    while (std::getline(in, line)) session_->execute(line);
    PhoneRun run;
    const std::string text = out_.str();
    run.events = decodeEvents(text.substr(consumed_));
    consumed_ = text.size();
    return run;
  }

 private:
  static PhoneOptions withTestOutput(PhoneOptions options) {
    options.virtualClock = true;
    options.json = true;
    return options;
  }

  std::ostringstream out_;
  std::unique_ptr<PhoneSession> session_;
  size_t consumed_ = 0;
};

}  // namespace quillet::news::testing
