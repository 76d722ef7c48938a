#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace xr::com::json {

/// JSON written front to back into one string.
///
/// A writer and no tree, so that giving it up needs no memory: an incident that finds none is dropped instead of ending the process in
/// a destructor. The caller opens and closes in pairs and gives each value of an object its key. One thread.
class Json_text {
 public:
  void begin_object() { open('{'); }
  void end_object() { close('}'); }
  void begin_array() { open('['); }
  void end_array() { close(']'); }

  /// The name of the value that follows, in an object. Plain ASCII, written as it is.
  void key(std::string_view name);

  void value(bool flag);
  void value(std::uint64_t number);
  void value(std::int64_t number);
  /// A number that JSON cannot express becomes null.
  void value(double number);
  /// @throws std::invalid_argument if the text is not UTF-8.
  void value(std::string_view text);

  std::string take() { return std::move(text_); }

 private:
  void separate();
  void open(char bracket);
  void close(char bracket);
  template <class Number>
  void put_number(Number number);

  std::string text_;
  bool comma_ = false;  // whether a comma is due before the next key or value
};

}  // namespace xr::com::json
