#pragma once

#include "platform/ui/TextInput.h"

namespace quillet::platform {

// A one-line text entry. Main run loop thread only.
class TextField : public TextInput {
 public:
  using TextInput::TextInput;
  std::string kind() const override { return "textField"; }
};

}  // namespace quillet::platform
