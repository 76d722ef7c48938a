#include "bench/answer.h"

#include <stdexcept>

namespace bench {

bool Answer::Take(std::string_view piece) {
  text_ += piece;
  if (head_ == 0) {
    constexpr std::string_view kEnd = "\r\n\r\n", kLength = "Content-Length: ";
    const auto end = text_.find(kEnd);
    if (end == std::string::npos) return false;
    const auto length = text_.find(kLength);
    if (length > end) throw std::runtime_error("an answer without length: " + text_);
    head_ = end + kEnd.size();
    size_ = head_ + std::stoul(text_.substr(length + kLength.size()));
  }
  if (text_.size() > size_) throw std::runtime_error("more than an answer: " + text_);
  return text_.size() == size_;
}

unsigned Answer::Status() const {
  constexpr std::string_view kVersion = "HTTP/1.1 ";
  return static_cast<unsigned>(std::stoul(text_.substr(kVersion.size())));
}

}  // namespace bench
