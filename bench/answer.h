#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace bench {

/// One answer of an HTTP server, as it comes in pieces.
class Answer {
 public:
  /// Whether it is whole with this piece. Throws std::runtime_error for an answer without a length, or with something behind it.
  bool Take(std::string_view piece);
  /// Makes room for the next one.
  void Forget() { *this = {}; }

  // Of a whole one.
  const std::string& Text() const { return text_; }
  unsigned Status() const;
  std::string_view Body() const { return std::string_view{text_}.substr(head_); }

 private:
  std::string text_;
  std::size_t head_ = 0, size_ = 0;  // known when all of the head is there
};

}  // namespace bench
