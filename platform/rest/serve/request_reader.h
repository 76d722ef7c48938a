#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <utility>

#include "serve/http_request.h"

namespace zuva::serve {

/// How far a request has come after some bytes.
enum class ReadState : std::uint8_t { kNeedsMore, kHead, kComplete, kMalformed, kBadVersion, kHeadTooLarge, kBodyTooLarge };

/// Makes requests of a connection's bytes (RFC 9112), one after another, without memory of its own per request. For one thread.
class RequestReader {
 public:
  RequestReader(std::size_t headerBytes, std::size_t bodyBytes);
  ~RequestReader();
  RequestReader(const RequestReader&) = delete;
  RequestReader& operator=(const RequestReader&) = delete;

  /// Forgets the request before and starts a new one.
  void Next();

  /// Takes bytes from the front of `bytes`, reports how many, and how far the request is. kHead is reported once, where the head is
  /// complete and the body is not; the head's fields stand from then on, and with kBodyTooLarge too. A request line that is none is
  /// reported as soon as it ends. After a state that is a fault no more bytes may be given.
  ReadState Take(std::span<const char> bytes, std::size_t& taken);

  const HttpRequest& Request() const { return request_; }
  std::string TakeBody() { return std::move(request_.body); }
  bool HasBegun() const { return begun_; }

 private:
  class Parser;
  struct Slot;

  const std::size_t headerBytes_;
  const std::size_t bodyBytes_;
  HttpRequest request_;
  bool begun_ = false;
  bool headReported_ = false;
  bool lineChecked_ = false;
  std::size_t headBytes_ = 0;   // of the head, taken so far
  std::unique_ptr<Slot> slot_;  // a Beast parser serves one request, and is made anew in place for the next
};

}  // namespace zuva::serve
