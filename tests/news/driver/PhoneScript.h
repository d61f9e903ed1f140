#pragma once

// Runs driver scripts in process on virtual time and reads back their events.
#include <gtest/gtest.h>

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
  std::istringstream lines(out.str());
  std::string line;
  while (std::getline(lines, line)) {
    platform::Value event = platform::jsonDecode(line);
    EXPECT_TRUE(event["event"].isString()) << line;
    run.events.push_back(event);
  }
  return run;
}

}  // namespace quillet::news::testing
