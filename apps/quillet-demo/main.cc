// The demo: starts the stand-in news server in this process and the phone
// against it, and plays the phone in the terminal: it draws the card on
// show as text, tells toasts and alerts, and takes short keys for the
// reader's gestures (or any driver command). `q`, the end of the input or
// Ctrl-C leaves and stops the server. With --script it runs driver commands
// from a file and prints the driver's events instead (docs/driver.md).
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>
#include <CLI/CLI.hpp>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "backend/news/NewsServer.h"
#include "news/demo/DemoConsole.h"
#include "news/demo/TerminalInput.h"
#include "news/demo/TerminalSize.h"
#include "platform/log/Log.h"

namespace {

std::atomic<bool> stopRequested{false};

void requestStop(int) { stopRequested.store(true); }

// The first Ctrl-C (or SIGTERM) asks the demo to leave cleanly; the handler
// then goes back to the default, so a second one ends the process at once.
// Without SA_RESTART, so a read it falls on fails rather than carrying on.
void installStopHandler() {
  struct sigaction action {};
  action.sa_handler = requestStop;
  sigemptyset(&action.sa_mask);
  action.sa_flags = SA_RESETHAND;
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

// A new directory for this run: under $XDG_DATA_HOME/quillet-demo, else under /tmp.
std::filesystem::path freshDataRoot() {
  std::filesystem::path base = "/tmp";
  std::string prefix = "quillet-demo-";
  if (const char* xdg = std::getenv("XDG_DATA_HOME"); xdg != nullptr && *xdg != '\0') {
    base = std::filesystem::path(xdg) / "quillet-demo";
    prefix = "run-";
    std::error_code ignored;
    std::filesystem::create_directories(base, ignored);
  }
  std::string pattern = (base / prefix).string();
  pattern.append("XXXXXX");
  if (::mkdtemp(pattern.data()) == nullptr) return {};
  return pattern;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"quillet-demo: the news server and the phone, played in this terminal"};
  std::string dataDir;
  app.add_option("--data-dir", dataDir, "Data of this run: backend/, phone/ and demo.log (default: a new directory)");
  quillet::news::DemoOptions options;
  options.phone.network = "wifi";
  app.add_option("--network", options.phone.network, "Network the phone has")
      ->check(CLI::IsMember({"auto", "wifi", "cellular", "none"}))
      ->capture_default_str();
  std::string clock = "real";
  app.add_option("--clock", clock, "real time, or virtual time moved by 'wait'")
      ->check(CLI::IsMember({"real", "virtual"}))
      ->capture_default_str();
  int columns = 0;
  app.add_option("--columns", columns, "Width to draw to (default: $COLUMNS or the terminal's)")
      ->check(CLI::Range(20, 1000));
  std::string script;
  app.add_option("--script", script, "Run the driver commands of FILE and print the driver's events, no drawing");
  bool log = false;
  app.add_flag("--log", log, "Tell the process log too (it always goes to demo.log)");
  CLI11_PARSE(app, argc, argv);

  const std::filesystem::path root = dataDir.empty() ? freshDataRoot() : std::filesystem::path(dataDir);
  std::error_code made;
  if (root.empty() || (std::filesystem::create_directories(root, made), made)) {
    std::cerr << "quillet-demo: cannot make the data directory " << root << "\n";
    return 2;
  }
  std::ifstream file;
  if (!script.empty()) {
    file.open(script);
    if (!file) {
      std::cerr << "quillet-demo: cannot read the script " << script << "\n";
      return 2;
    }
  }

  // The log goes to a file: on the terminal it would cut through the drawing.
  std::ofstream logFile(root / "demo.log", std::ios::app);
  quillet::platform::Log::setProcessName("quillet-demo");
  quillet::platform::Log::setStandardErrorEnabled(false);
  const int logSink = quillet::platform::Log::addSink([&logFile](const quillet::platform::LogRecord& record) {
    logFile << record.line << '\n' << std::flush;
  });
  installStopHandler();

  quillet::backend::NewsServerOptions serverOptions;
  serverOptions.host = "127.0.0.1";
  serverOptions.port = 0;
  serverOptions.dataDirectory = root / "backend";
  quillet::backend::NewsServer server(serverOptions);
  quillet::platform::Error error;
  if (!server.start(&error)) {
    std::cerr << "quillet-demo: news server: " << error.localizedDescription() << "\n";
    quillet::platform::Log::removeSink(logSink);
    return 1;
  }

  options.phone.apiBase = server.apiUrl();
  options.phone.dataDirectory = root / "phone";
  options.phone.virtualClock = clock == "virtual";
  options.phone.log = log;
  int status = 0;
  if (!script.empty()) {
    quillet::news::PhoneSession session(options.phone, std::cout);
    status = session.run(file);
  } else {
    std::cout << "Quillet demo: news server at " << server.apiUrl() << ", data in " << root.string() << std::endl;
    options.columns = columns > 0 ? columns : quillet::news::TerminalSize::columns();
    const bool terminal = ::isatty(STDIN_FILENO) == 1;
    options.prompt = terminal;
    options.echo = !terminal;
    options.stop = &stopRequested;
    quillet::news::TerminalInput input(STDIN_FILENO, stopRequested);
    std::istream in(&input);
    quillet::news::DemoConsole console(options, std::cout);
    status = console.run(in);
    if (terminal) std::cout << "\n";
  }
  server.stop();
  std::cout << "stopped" << std::endl;
  quillet::platform::Log::removeSink(logSink);
  return status;
}
