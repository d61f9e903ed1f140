#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/ui/ViewController.h"

namespace quillet::platform::testing {

// A screen that writes each lifecycle call as "<id>.<hook>" into a shared log,
// and runs an optional action at viewDidLoad.
class RecordingScreen : public ViewController {
 public:
  RecordingScreen(std::string id, std::vector<std::string>& log) : ViewController(std::move(id)), log_(log) {}
  std::function<void(RecordingScreen&)> onLoad;

 protected:
  void viewDidLoad() override {
    log_.push_back(identifier() + ".load");
    if (onLoad) onLoad(*this);
  }
  void viewWillAppear(bool) override { log_.push_back(identifier() + ".willAppear"); }
  void viewDidAppear(bool) override { log_.push_back(identifier() + ".didAppear"); }
  void viewWillDisappear(bool) override { log_.push_back(identifier() + ".willDisappear"); }
  void viewDidDisappear(bool) override { log_.push_back(identifier() + ".didDisappear"); }

 private:
  std::vector<std::string>& log_;
};

}  // namespace quillet::platform::testing
