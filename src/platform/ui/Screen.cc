#include "platform/ui/Screen.h"

namespace quillet::platform {

Screen& Screen::main() {
  static Screen screen;
  return screen;
}

}  // namespace quillet::platform
