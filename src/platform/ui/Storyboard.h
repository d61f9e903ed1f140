#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "platform/ui/NavigationController.h"
#include "platform/ui/ViewController.h"
#include "platform/value/Error.h"

namespace quillet::platform {

// A named set of screens ("Main"): one factory per identifier, and an
// initial screen, which stands inside a navigation stack when asked. Each
// made screen carries its identifier and this storyboard, so it can make
// the next ones. The process-wide storyboards are reached by name; tests
// build their own with std::make_shared. Main run loop thread only.
class Storyboard : public std::enable_shared_from_this<Storyboard> {
 public:
  using Factory = std::function<std::shared_ptr<ViewController>()>;

  explicit Storyboard(std::string name);

  // The process-wide storyboard of that name, made empty on first use.
  static std::shared_ptr<Storyboard> storyboardWithName(const std::string& name);

  const std::string& name() const { return name_; }
  void registerViewController(const std::string& identifier, Factory factory);
  bool hasViewController(const std::string& identifier) const { return factories_.count(identifier) != 0; }
  void setInitialViewController(std::string identifier, bool insideNavigationController);

  // A new screen, or nullptr with a NoSuchScreen error for an unknown identifier.
  std::shared_ptr<ViewController> instantiateViewControllerWithIdentifier(const std::string& identifier,
                                                                          Error* error = nullptr);
  // The initial screen, inside a new navigation stack when so set; nullptr
  // with an error when none is set or its identifier is unknown.
  std::shared_ptr<ViewController> instantiateInitialViewController(Error* error = nullptr);

 private:
  std::string name_;
  std::map<std::string, Factory> factories_;
  std::string initial_;
  bool initialInsideNavigation_ = false;
};

}  // namespace quillet::platform
