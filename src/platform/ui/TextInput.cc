#include "platform/ui/TextInput.h"

#include "platform/ui/Label.h"
#include "platform/ui/UiError.h"

namespace quillet::platform {

void TextInput::runHook(const Hook& hook) {
  if (!hook) return;
  runGuarded([this, &hook] {
    auto call = hook;
    call(*this);
  });
}

void TextInput::beginEditing() {
  if (editing_) return;
  editing_ = true;
  runHook(didBeginEditing_);
}

void TextInput::endEditing() {
  if (!editing_) return;
  editing_ = false;
  runHook(didEndEditing_);
}

void TextInput::pressReturn() { runHook(shouldReturn_); }

bool TextInput::performSetText(std::string text, Error* error) {
  if (!checkInteractive(error)) return false;
  if (!editable_) return uiError(error, UiErrorCode::NotInteractive, "'" + name() + "' is not editable");
  auto keepAlive = weak_from_this().lock();
  const bool wasEditing = editing_;
  beginEditing();
  text_ = std::move(text);
  runHook(didChange_);
  if (!wasEditing) endEditing();
  return true;
}

bool TextInput::performSetEditing(bool editing, Error* error) {
  if (!editing) {
    endEditing();
    return true;
  }
  if (!checkInteractive(error)) return false;
  if (!editable_) return uiError(error, UiErrorCode::NotInteractive, "'" + name() + "' is not editable");
  beginEditing();
  return true;
}

void TextInput::describeState(Value& into) const {
  into.set("text", Value(text_));
  if (!placeholder_.empty()) into.set("placeholder", Value(placeholder_));
  into.set("textColor", Value(textColor_.hex()));
  describeFont(font_, into);
  into.set("editable", Value(editable_));
}

}  // namespace quillet::platform
