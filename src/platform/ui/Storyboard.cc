#include "platform/ui/Storyboard.h"

#include <mutex>

#include "platform/ui/UiError.h"

namespace quillet::platform {

Storyboard::Storyboard(std::string name) : name_(std::move(name)) {}

std::shared_ptr<Storyboard> Storyboard::storyboardWithName(const std::string& name) {
  static std::mutex mutex;
  static std::map<std::string, std::shared_ptr<Storyboard>> storyboards;
  std::lock_guard lock(mutex);
  auto& storyboard = storyboards[name];
  if (!storyboard) storyboard = std::make_shared<Storyboard>(name);
  return storyboard;
}

void Storyboard::registerViewController(const std::string& identifier, Factory factory) {
  factories_[identifier] = std::move(factory);
}

void Storyboard::setInitialViewController(std::string identifier, bool insideNavigationController) {
  initial_ = std::move(identifier);
  initialInsideNavigation_ = insideNavigationController;
}

std::shared_ptr<ViewController> Storyboard::instantiateViewControllerWithIdentifier(const std::string& identifier,
                                                                                    Error* error) {
  auto it = factories_.find(identifier);
  std::shared_ptr<ViewController> screen = it == factories_.end() ? nullptr : it->second();
  if (!screen) {
    uiError(error, UiErrorCode::NoSuchScreen,
            "Storyboard (" + name_ + ") doesn't contain a view controller with identifier '" + identifier + "'");
    return nullptr;
  }
  screen->setIdentifier(identifier);
  screen->setStoryboard(shared_from_this());
  return screen;
}

std::shared_ptr<ViewController> Storyboard::instantiateInitialViewController(Error* error) {
  if (initial_.empty()) {
    uiError(error, UiErrorCode::NoSuchScreen, "Storyboard (" + name_ + ") has no initial view controller");
    return nullptr;
  }
  auto screen = instantiateViewControllerWithIdentifier(initial_, error);
  if (!screen || !initialInsideNavigation_) return screen;
  auto navigation = std::make_shared<NavigationController>(screen);
  navigation->setStoryboard(shared_from_this());
  return navigation;
}

}  // namespace quillet::platform
