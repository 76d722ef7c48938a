#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "zuva/change_sink.h"

namespace zuva::serve {

/// One thing that happened to an element.
struct Change {
  enum class Kind : std::uint8_t { kAdded, kChanged, kRemoved, kDropped };

  Kind kind = Kind::kDropped;
  std::shared_ptr<ServerResource> resource;
  std::shared_ptr<ServerElement> element;
  std::uint64_t generation = 0;             ///< of the resource's list after it, with kAdded and kRemoved
  std::string path;                         ///< with kAdded and kRemoved
  std::shared_ptr<const ogm::Object> tree;  ///< with kAdded
  std::string text;                         ///< with kAdded
};

/// Carries changes from the threads that make them to the I/O thread, which is woken once for all that gathers until it comes.
/// A change of an element that still waits here is not queued again: its tree is read later. An element's removal drops it.
/// The queue is bounded: what comes when it is full, or finds no memory, is lost, and the taker is told so. A wake-up that fails is tried
/// again with the next change; whoever takes looks in from time to time as well.
class ChangeQueue final : public ChangeSink {
 public:
  static constexpr std::size_t kLongest = 65536;

  /// From now on changes are kept; nothing is before. `wake` is called with the lock held, and so must only wake; it may throw.
  void Open(std::function<void()> wake);
  /// Whether anybody wants to hear; changes are dropped while nobody does.
  void Listen(bool anybody);
  /// Drops all, and keeps and wakes no more.
  void Close();

  struct Batch {
    std::vector<Change> changes;
    bool lost = false;
  };
  Batch Take() noexcept;

  void Added(const std::shared_ptr<ServerResource>& resource, const std::shared_ptr<ServerElement>& element, std::string path,
             std::shared_ptr<const ogm::Object> tree, std::string text) noexcept override;
  void Changed(const std::shared_ptr<ServerResource>& resource, const std::shared_ptr<ServerElement>& element) noexcept override;
  void Removed(const std::shared_ptr<ServerResource>& resource, const std::shared_ptr<ServerElement>& element,
               std::string path) noexcept override;

 private:
  bool TakesLocked() noexcept;
  void PushLocked(Change change) noexcept;
  void WakeLocked() noexcept;
  void DropMarkLocked(const ServerElement* element);
  std::vector<Change> EmptyLocked() noexcept;

  std::mutex mutex_;  // guards all below; no other lock of the program is taken under it
  std::function<void()> wake_;
  bool listening_ = false;
  bool woken_ = false;  // a wake-up is on its way
  bool lost_ = false;
  std::vector<Change> changes_;
  std::unordered_map<const ServerElement*, std::size_t> marks_;  // where in changes_ an element's waiting kChanged is
};

}  // namespace zuva::serve
