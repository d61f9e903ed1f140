// The phone: runs Quillet headless. For now it offers its help and version;
// the screens and gestures arrive with the news client.
#include <CLI/CLI.hpp>

#include <filesystem>
#include <iostream>

#include "platform/log/Log.h"

int main(int argc, char** argv) {
  CLI::App app{"Quillet: a news reader for a phone, run headless"};
  std::string dataDir;
  app.add_option("--data-dir", dataDir, "Per-install data root (default: $XDG_DATA_HOME/quillet)");
  bool version = false;
  app.add_flag("--version", version, "Print the version and exit");
  CLI11_PARSE(app, argc, argv);

  if (version) {
    std::cout << "quillet 0.1.0\n";
    return 0;
  }
  std::cout << app.help();
  return 0;
}
