#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace zuva::serve {

struct Seat;
struct Subscription;

/// One text frame in two pieces: what only this subscriber gets, and what all of them share.
struct Frame {
  std::shared_ptr<const std::string> prefix;  ///< null: nothing stands before
  std::shared_ptr<const std::string> tail;

  std::size_t Size() const { return (prefix ? prefix->size() : 0) + tail->size(); }
};

/// That an element has changed since its subscriber was last told. Costs a few bytes until the socket takes it, and only then is looked
/// at: the newest state wins.
struct Mark {
  Seat* seat = nullptr;
  std::uint32_t slot = 0;
  std::uint32_t serial = 0;  ///< as in the seat's member; another one there means that the mark is void
};

/// What waits for one client's socket, in order. I/O thread only.
class Outbox {
 public:
  /// What a mark counts, since its text does not exist yet.
  static constexpr std::size_t kMarkBytes = 64;

  /// An answer has no owner; what belongs to a subscription goes when that ends.
  void Push(Frame frame, const Subscription* owner = nullptr);
  void Push(Mark mark, const Subscription* owner);
  /// Drops what waits for this subscription.
  void Forget(const Subscription* owner);
  void Clear();

  /// The next frame; `render` makes it of a mark, or nothing if there is no need to tell any more. What `render` throws leaves all as it
  /// was.
  std::optional<Frame> Pop(const std::function<std::optional<Frame>(const Mark&)>& render);
  std::size_t Bytes() const { return bytes_; }

 private:
  struct Item {
    const Subscription* owner;
    Mark mark;  // of no seat: the frame stands
    Frame frame;

    std::size_t Bytes() const { return mark.seat ? kMarkBytes : frame.Size(); }
  };

  std::deque<Item> items_;
  std::size_t bytes_ = 0;
};

}  // namespace zuva::serve
