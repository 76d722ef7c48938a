#pragma once

#include <exception>
#include <string>
#include <utility>

namespace ara::rest {

/// Base of everything that this layer throws on its own account.
class RestException : public std::exception {
 public:
  explicit RestException(std::string text) : text_{std::move(text)} {}
  const char* what() const noexcept override { return text_.c_str(); }

 private:
  std::string text_;
};

/// The program asks for something that can't work, whatever the data.
class LogicException : public RestException {
 public:
  using RestException::RestException;
};

/// An argument that the callee can't use: a null pointer, a text that is no URI, a date out of range.
class InvalidArgumentException : public RestException {
 public:
  using RestException::RestException;
};

/// A value tree has not the shape that the caller expects.
class DataModelException : public RestException {
 public:
  using RestException::RestException;
};

}  // namespace ara::rest
