#pragma once

#include <string>

#include "platform/value/Value.h"

namespace quillet::news {

// What one line typed in the demo asks for: a short key turned into a
// driver command, or the line itself when it is not a key. Pure; any thread.
class DemoKeys {
 public:
  enum class Action {
    Run,   // run `command` with the driver (empty: nothing, just draw again)
    Help,  // show the keys
    Say,   // nothing to run; tell the reader `command`
    Quit,  // leave the demo
  };
  struct Step {
    Action action = Action::Run;
    std::string command;
  };

  // `screen` is the top screen's identifier; `feed` is CardState::feed (nil
  // off the feed), which tells which panel is open.
  static Step translate(const std::string& line, const std::string& screen, const platform::Value& feed);

  // The one-line reminder of the keys.
  static const char* helpLine();
  // The keys, one a line.
  static const char* helpText();
};

}  // namespace quillet::news
