#pragma once

#include <functional>
#include <string>

namespace zuva::format {

/// A value held as text. Belongs to one thread at a time.
class Value {
 public:
  using PostValueChangeCallback = std::function<void(const std::string&)>;

  virtual ~Value() = default;

  const std::string& GetValue() const noexcept { return text_; }
  PostValueChangeCallback GetPostValueChangeCallback() const { return callback_; }
  /// Called with the new text after each change.
  void SetPostValueChangeCallback(PostValueChangeCallback callback);

 protected:
  Value() = default;
  /// A copy has the text, not the callback.
  Value(const Value& other) : text_{other.text_} {}
  Value& operator=(const Value& other) = delete;
  void SetValue(std::string text);

 private:
  std::string text_;
  PostValueChangeCallback callback_;
};

}  // namespace zuva::format
