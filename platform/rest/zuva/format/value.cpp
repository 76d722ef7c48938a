#include "zuva/format/value.h"

#include <utility>

namespace zuva::format {

void Value::SetPostValueChangeCallback(PostValueChangeCallback callback) {
  callback_ = std::move(callback);
}

void Value::SetValue(std::string text) {
  if (text == text_) return;
  text_ = std::move(text);
  if (callback_) callback_(text_);
}

}  // namespace zuva::format
