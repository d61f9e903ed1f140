#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/ui/View.h"

namespace quillet::news {

// The app's toolbox of class operations. No screen calls them at present;
// they stand as the app has them. Dates use the phone's clock (the main run
// loop's). Main thread, except message(), which may be called from any
// thread and shows its alert on the main thread.
class Utilitiys {
 public:
  // True when the internet reachability status is not "not reachable".
  static bool isConnectedToInternet();
  // An alert with the title, the message and the button "OK", over the top screen.
  static void message(const std::string& message, const std::string& title);
  // Today as "yyyy-MM-dd" in the device's locale and time zone.
  static std::string getCurrentDate();
  // "dd-MM-yyyy" to "dd MMMM,EEEE", at GMT in "en_US_POSIX"; "" when the text does not parse.
  static std::string convert(const std::string& date);
  // "HH:mm:ss" to "hh:mm a", at GMT in "en_US_POSIX"; "" when the text does not parse.
  static std::string convertTime(const std::string& time);
  // A header: the image "logo_c.png", the title, and a back button with the
  // image "back.png" whose action calls `backbuttonAction`.
  static std::shared_ptr<platform::View> CustomNavigationBarWithTitle(const std::string& title, double width,
                                                                      std::function<void()> backbuttonAction);
  // Draws thin lines on the view's four edges (subviews "edgeTop", "edgeBottom", "edgeLeft", "edgeRight").
  static void SetLayer(platform::View& view);
};

}  // namespace quillet::news
