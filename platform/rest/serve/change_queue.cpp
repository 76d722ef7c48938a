#include "serve/change_queue.h"

#include <exception>
#include <new>
#include <utility>

#include "zuva/server_resource.h"

namespace zuva::serve {

void ChangeQueue::Open(std::function<void()> wake) {
  const std::lock_guard lock{mutex_};
  wake_ = std::move(wake);
}

void ChangeQueue::Listen(bool anybody) {
  std::vector<Change> dropped;  // ends after the lock: objects may end with it
  const std::lock_guard lock{mutex_};
  listening_ = anybody && wake_ != nullptr;
  if (!listening_) dropped = EmptyLocked();
}

void ChangeQueue::Close() {
  std::vector<Change> dropped;
  const std::lock_guard lock{mutex_};
  wake_ = nullptr;
  listening_ = false;
  dropped = EmptyLocked();
}

ChangeQueue::Batch ChangeQueue::Take() noexcept {
  const std::lock_guard lock{mutex_};
  woken_ = false;
  const bool lost = lost_;
  return {EmptyLocked(), lost};
}

void ChangeQueue::Added(const std::shared_ptr<ServerResource>& resource, const std::shared_ptr<ServerElement>& element, std::string path,
                        std::shared_ptr<const ogm::Object> tree, std::string text) noexcept {
  const std::lock_guard lock{mutex_};
  if (!TakesLocked()) return;
  PushLocked({Change::Kind::kAdded, resource, element, resource->GetGeneration(), std::move(path), std::move(tree), std::move(text)});
}

void ChangeQueue::Changed(const std::shared_ptr<ServerResource>& resource, const std::shared_ptr<ServerElement>& element) noexcept {
  const std::lock_guard lock{mutex_};
  if (!TakesLocked()) return;
  try {
    if (!marks_.try_emplace(element.get(), changes_.size()).second) return;
  } catch (const std::bad_alloc&) {  // without its mark the change is pushed each time
  }
  PushLocked({Change::Kind::kChanged, resource, element, 0, {}, nullptr, {}});
}

void ChangeQueue::Removed(const std::shared_ptr<ServerResource>& resource, const std::shared_ptr<ServerElement>& element,
                          std::string path) noexcept {
  const std::lock_guard lock{mutex_};
  if (!TakesLocked()) return;
  DropMarkLocked(element.get());
  PushLocked({Change::Kind::kRemoved, resource, element, resource->GetGeneration(), std::move(path), nullptr, {}});
}

bool ChangeQueue::TakesLocked() noexcept {
  if (!listening_ || lost_) return false;
  lost_ = changes_.size() >= kLongest;
  return !lost_;
}

void ChangeQueue::PushLocked(Change change) noexcept {
  try {
    changes_.push_back(std::move(change));
  } catch (const std::bad_alloc&) {  // the subscribers end for it, and find the tree as it is when they come again
    lost_ = true;
  }
  WakeLocked();
}

void ChangeQueue::WakeLocked() noexcept {
  if (woken_) return;
  try {
    wake_();
    woken_ = true;                   // not before: after a failure the next change tries again
  } catch (const std::exception&) {  // there is no memory to log with either
  }
}

void ChangeQueue::DropMarkLocked(const ServerElement* element) {
  const auto mark = marks_.find(element);
  if (mark == marks_.end()) return;
  changes_[mark->second] = Change{};
  marks_.erase(mark);
}

std::vector<Change> ChangeQueue::EmptyLocked() noexcept {
  marks_.clear();
  lost_ = false;
  return std::exchange(changes_, {});
}

}  // namespace zuva::serve
