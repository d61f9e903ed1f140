#pragma once

namespace quillet::platform {

enum class UserInterfaceIdiom { Phone, Pad };

// The device the program runs on: its interface idiom (a phone or a tablet).
// The driver sets it before launch (default a phone); screens read it to
// choose between phone and tablet presentations. Main run loop thread only.
struct Device {
  UserInterfaceIdiom userInterfaceIdiom = UserInterfaceIdiom::Phone;

  static Device& current();
};

}  // namespace quillet::platform
