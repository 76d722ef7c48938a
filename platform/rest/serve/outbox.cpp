#include "serve/outbox.h"

#include <utility>

namespace zuva::serve {

void Outbox::Push(Frame frame, const Subscription* owner) {
  items_.push_back({owner, {}, std::move(frame)});
  bytes_ += items_.back().Bytes();
}

void Outbox::Push(Mark mark, const Subscription* owner) {
  items_.push_back({owner, mark, {}});
  bytes_ += kMarkBytes;
}

void Outbox::Forget(const Subscription* owner) {
  std::erase_if(items_, [&](const Item& item) {
    if (item.owner != owner) return false;
    bytes_ -= item.Bytes();
    return true;
  });
}

void Outbox::Clear() {
  items_.clear();
  bytes_ = 0;
}

std::optional<Frame> Outbox::Pop(const std::function<std::optional<Frame>(const Mark&)>& render) {
  while (!items_.empty()) {
    auto& item = items_.front();
    const auto bytes = item.Bytes();
    auto frame = item.mark.seat ? render(item.mark) : std::move(item.frame);  // may throw: the item then stays
    items_.pop_front();
    bytes_ -= bytes;
    if (frame) return frame;
  }
  return std::nullopt;
}

}  // namespace zuva::serve
