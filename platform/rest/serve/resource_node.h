#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "serve/change_queue.h"
#include "serve/subscription.h"

namespace zuva::serve {

/// The subscriptions at one resource, and what is needed to tell them. I/O thread only.
///
/// A snapshot and the queue of changes overlap: what the queue still holds may be in the snapshot already. The number of the list tells
/// additions and removals apart, the version of the content does it for changes.
class ResourceNode {
 public:
  explicit ResourceNode(std::shared_ptr<ServerResource> resource) : resource_{std::move(resource)} {}
  ResourceNode(const ResourceNode&) = delete;
  ResourceNode& operator=(const ResourceNode&) = delete;

  /// Takes a place for the subscription, and gives the elements that it sees, as JSON separated by commas.
  std::string Join(Subscription& subscription);
  void Leave(const Subscription& subscription);
  bool IsEmpty() const { return seats_.empty(); }

  /// Puts what the change means to each subscription into its outbox; the subscribers concerned are added to `touched`. Throws for want of
  /// memory, and may then have done so for some of them only: `TellLost` is what is left.
  void Tell(const Change& change, Touched& touched);
  /// Adds all subscribers as such that missed something.
  void TellLost(Touched& touched) noexcept;
  /// What to send for a mark, from the element's present state; nothing if the client knows it already.
  std::optional<Frame> Render(const Mark& mark);

 private:
  void TellAdded(const Change& change, Touched& touched);
  void TellChanged(const Change& change, Touched& touched);
  void TellRemoved(const Change& change, Touched& touched);
  void TellFiltered(Seat& seat, std::uint32_t number, const Rendered& rendered, Touched& touched);

  std::uint32_t SlotOf(const std::shared_ptr<ServerElement>& element, std::string_view path, std::uint64_t generation);
  void FreeSlot(std::uint32_t number);
  bool IsPresent(Slot& slot) const;
  static Member& MemberOf(Seat& seat, std::uint32_t number);

  const std::shared_ptr<ServerResource> resource_;
  std::vector<Seat*> seats_;
  std::vector<Slot> slots_;
  std::unordered_map<std::string, std::uint32_t> byPath_;
  std::unordered_map<const ServerElement*, std::uint32_t> byElement_;  // the latest slot of each
};

}  // namespace zuva::serve
