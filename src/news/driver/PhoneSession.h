#pragma once

#include <deque>
#include <istream>
#include <memory>
#include <mutex>
#include <ostream>
#include <string>

#include "news/app/AppDelegate.h"
#include "news/driver/EventPrinter.h"
#include "news/driver/PhoneOptions.h"
#include "platform/defaults/UserDefaults.h"
#include "platform/files/FileSystem.h"
#include "platform/keychain/Keychain.h"
#include "platform/runloop/RunLoop.h"
#include "platform/ui/Application.h"

namespace quillet::news {

// The phone, playing the app headless: sets up the data root, the main run
// loop (real or virtual time), the application with the shell as its
// delegate, and then runs one command a line, printing what happens (see
// docs/driver.md). It installs itself as the process's main loop, shared
// application and standard file system, so one session lives at a time.
// Main thread: the thread that makes it runs it.
class PhoneSession {
 public:
  // Real time passes this long with no work on the loop before "settle" ends.
  static constexpr double kQuietSeconds = 0.3;
  // "settle" gives up after this much real time.
  static constexpr double kSettleLimitSeconds = 15.0;

  PhoneSession(PhoneOptions options, std::ostream& out);
  ~PhoneSession();
  PhoneSession(const PhoneSession&) = delete;
  PhoneSession& operator=(const PhoneSession&) = delete;

  // Runs one command line; false after "quit", or when the app ended with an
  // uncaught out-of-range error ("terminated" event). A bad command prints
  // an "error" event and returns true.
  bool execute(const std::string& line);
  // Runs the commands of `in` until "quit" or the end; returns the exit
  // status: 0, or 1 when the app was terminated.
  int run(std::istream& in);

  platform::Application& application() { return *application_; }
  platform::RunLoop& runLoop() { return *loop_; }
  platform::UserDefaults& defaults() { return *defaults_; }

 private:
  bool dispatch(const std::string& command, const std::string& argument);
  void error(const std::string& message);
  void launch(const std::string& argument);
  void wait(const std::string& argument);
  void setNetwork(const std::string& mode, bool announce);
  void deviceToken(const std::string& argument);
  void push(const std::string& argument, bool fetchForm);
  void request(const std::string& argument);
  // Runs a reader gesture of ReaderGestures; prints its error.
  void gesture(const std::string& command, const std::string& argument);
  // The commands of the content pages, sharing, player and device; false
  // when `command` is none of them.
  bool pageCommand(const std::string& command, const std::string& argument);
  // "a,b,c": the URL schemes of the apps installed from now on ("none" or nothing: none).
  void installedApps(const std::string& argument);
  // "mail-account on|off", "device phone|pad".
  void deviceSetting(const std::string& command, const std::string& argument);
  void printScreen();
  // Runs the loop until it has had no work for kQuietSeconds of real time.
  void settle();
  void drainLogs();
  // The shell's services: instance ID over this session's stores and
  // endpoints, the sender from the options when one is given.
  void becomeInactive();
  // Sets the platform's bundle, device and locale facts from the options.
  void describeAppAndDevice();
  AppServices makeServices(const std::shared_ptr<platform::Clock>& clock);

  PhoneOptions options_;
  EventPrinter printer_;
  std::shared_ptr<platform::FileSystem> fileSystem_;
  std::unique_ptr<platform::UserDefaults> defaults_;
  std::unique_ptr<platform::Keychain> keychain_;
  std::shared_ptr<platform::RunLoop> loop_;
  std::shared_ptr<platform::Application> application_;
  std::shared_ptr<AppDelegate> appDelegate_;
  platform::UiEvents::Token uiToken_ = 0;
  int logSink_ = -1;
  std::mutex logMutex_;
  std::deque<std::string> logLines_;  // guarded by logMutex_
  bool launched_ = false;
  bool terminated_ = false;  // the app ended with an uncaught error
  double startSeconds_ = 0;
};

}  // namespace quillet::news
