#pragma once

#include <istream>
#include <memory>
#include <ostream>
#include <string>

#include "news/demo/DemoOptions.h"
#include "news/demo/LineSink.h"
#include "news/driver/PhoneSession.h"

namespace quillet::news {

// The interactive demo: a PhoneSession whose events it reads back (as JSON,
// through a LineSink) and tells as short lines, and which it draws after
// every command: the screen, the card of the feed, the open panel, the
// alert, then a line of help. Lines read are short keys (DemoKeys) or
// driver commands. The session is made with the console and ends with it;
// like PhoneSession, one console lives at a time. Main thread only.
class DemoConsole {
 public:
  DemoConsole(DemoOptions options, std::ostream& out);
  ~DemoConsole();
  DemoConsole(const DemoConsole&) = delete;
  DemoConsole& operator=(const DemoConsole&) = delete;

  // Launches the app and waits out the first launch's splash, then takes
  // lines from `in` until "q"/"quit", the end of the input, the stop flag, or
  // the app's end. Returns 0, or 1 when the app was terminated.
  int run(std::istream& in);

  // Launches the app; on the splash of a first launch, waits its time.
  // False when the app ended.
  bool start();
  // One line read from the reader; false when the demo should leave.
  bool handle(const std::string& line);
  // Draws the screen on show and the help line.
  void draw();

  PhoneSession& session() { return *session_; }

 private:
  void tell(const std::string& eventLine);
  // Runs a driver command and lets the app finish its work; false when the app ended.
  bool runCommand(const std::string& command);
  bool stopRequested() const;

  DemoOptions options_;
  std::ostream& out_;
  bool terminated_ = false;  // a "terminated" event was told
  LineSink sink_;
  std::ostream events_;
  std::unique_ptr<PhoneSession> session_;
};

}  // namespace quillet::news
