#include "serve/resource_node.h"

#include <algorithm>

#include "serve/frames.h"

namespace zuva::serve {
namespace {

bool Watches(const Seat& seat, std::string_view path) {
  const auto& wanted = seat.subscription->elementPath;
  return wanted.empty() || wanted == path;
}

void Push(Seat& seat, std::shared_ptr<const std::string> tail, Touched& touched) {
  auto& subscription = *seat.subscription;
  subscription.subscriber->GetOutbox().Push(Frame{subscription.prefix, std::move(tail)}, &subscription);
  touched.Add(*subscription.subscriber);
}

void PushMark(Seat& seat, std::uint32_t number, Member& member, Touched& touched) {
  if (member.mark != 0) return;  // one waits already, and will show this change too
  if (++seat.lastSerial == 0) ++seat.lastSerial;
  auto& subscription = *seat.subscription;
  subscription.subscriber->GetOutbox().Push(Mark{&seat, number, seat.lastSerial}, &subscription);
  member.mark = seat.lastSerial;
  touched.Add(*subscription.subscriber);
}

}  // namespace

std::string ResourceNode::Join(Subscription& subscription) {
  auto& seat = *subscription.seats.emplace_back(std::make_unique<Seat>());
  seat.subscription = &subscription;
  seat.node = this;
  const auto& list = resource_->Current();
  seat.generation = list.generation;
  std::string elements;
  for (std::size_t i = 0; i != list.items->size(); ++i) {
    const auto& element = (*list.items)[i];
    const auto& path = list.labels[i].path;
    const auto number = SlotOf(element, path, seat.generation);
    if (!Watches(seat, path)) continue;
    const auto& rendered = element->Render();
    // One that was taken out since then may have another identity by now: it is gone, and told as added when it comes again.
    if (element->GetUri().GetText() != path) continue;
    if (!subscription.query.Accepts(*rendered->tree)) continue;
    auto& member = MemberOf(seat, number);
    member.known = true;
    member.version = rendered->version;
    if (!elements.empty()) elements += ',';
    elements += rendered->body;
  }
  seats_.push_back(&seat);
  return elements;
}

void ResourceNode::Leave(const Subscription& subscription) {
  std::erase_if(seats_, [&](const Seat* seat) { return seat->subscription == &subscription; });
}

void ResourceNode::Tell(const Change& change, Touched& touched) {
  switch (change.kind) {
    case Change::Kind::kAdded:
      return TellAdded(change, touched);
    case Change::Kind::kChanged:
      return TellChanged(change, touched);
    case Change::Kind::kRemoved:
      return TellRemoved(change, touched);
    case Change::Kind::kDropped:
      return;
  }
}

void ResourceNode::TellLost(Touched& touched) noexcept {
  for (const auto* seat : seats_) touched.AddLost(*seat->subscription->subscriber);
}

void ResourceNode::TellAdded(const Change& change, Touched& touched) {
  const auto number = SlotOf(change.element, change.path, change.generation);
  std::shared_ptr<const std::string> added;
  for (auto* seat : seats_) {
    if (change.generation <= seat->generation || !Watches(*seat, change.path) || !seat->subscription->query.Accepts(*change.tree)) continue;
    auto& member = MemberOf(*seat, number);
    member = {.known = true};
    // To the subscriber of an element alone its coming back is a change like any other.
    if (!seat->subscription->elementPath.empty()) {
      Push(*seat, EventTail("changed", change.path, change.text), touched);
      continue;
    }
    if (!added) added = EventTail("added", change.path, change.text);
    Push(*seat, added, touched);
  }
}

void ResourceNode::TellChanged(const Change& change, Touched& touched) {
  const auto found = byElement_.find(change.element.get());
  if (found == byElement_.end()) return;
  const auto number = found->second;
  std::shared_ptr<const Rendered> rendered;
  for (auto* seat : seats_) {
    if (!Watches(*seat, slots_[number].path)) continue;
    if (seat->subscription->query.filters.empty()) {
      auto& member = MemberOf(*seat, number);
      if (member.known) PushMark(*seat, number, member, touched);
      continue;
    }
    if (!rendered) rendered = change.element->Render();
    if (!IsPresent(slots_[number])) return;  // its removal is on the way
    TellFiltered(*seat, number, *rendered, touched);
  }
}

void ResourceNode::TellFiltered(Seat& seat, std::uint32_t number, const Rendered& rendered, Touched& touched) {
  auto& member = MemberOf(seat, number);
  const auto& path = slots_[number].path;
  if (seat.subscription->query.Accepts(*rendered.tree)) {
    if (member.known) return PushMark(seat, number, member, touched);
    member = {.known = true, .version = rendered.version};
    Push(seat, EventTail("added", path, rendered.body), touched);
  } else if (member.known) {
    member = {};
    Push(seat, EventTail("removed", path, {}), touched);
  }
}

void ResourceNode::TellRemoved(const Change& change, Touched& touched) {
  const auto found = byPath_.find(change.path);
  if (found == byPath_.end()) return;
  const auto number = found->second;
  std::shared_ptr<const std::string> removed;
  for (auto* seat : seats_) {
    if (change.generation <= seat->generation) continue;
    auto& member = MemberOf(*seat, number);
    if (std::exchange(member, {}).known) {
      if (!removed) removed = EventTail("removed", change.path, {});
      Push(*seat, removed, touched);
    }
  }
  if (change.generation > slots_[number].generation) FreeSlot(number);
}

std::optional<Frame> ResourceNode::Render(const Mark& mark) {
  auto& seat = *mark.seat;
  auto& member = MemberOf(seat, mark.slot);
  if (member.mark != mark.serial) return std::nullopt;
  auto& slot = slots_[mark.slot];
  const auto& rendered = slot.element->Render();
  if (rendered->version == member.version || !IsPresent(slot)) {
    member.mark = 0;
    return std::nullopt;
  }
  auto& subscription = *seat.subscription;
  if (!subscription.query.Accepts(*rendered->tree)) {
    Frame removed{subscription.prefix, EventTail("removed", slot.path, {})};
    member = {};
    return removed;
  }
  if (!slot.tail || slot.tailVersion != rendered->version) {
    slot.tail = EventTail("changed", slot.path, rendered->body);
    slot.tailVersion = rendered->version;
  }
  member.mark = 0;  // only now: without memory for the text the mark still waits
  member.version = rendered->version;
  return Frame{subscription.prefix, slot.tail};
}

std::uint32_t ResourceNode::SlotOf(const std::shared_ptr<ServerElement>& element, std::string_view path, std::uint64_t generation) {
  auto entry = byPath_.find(std::string{path});
  if (entry == byPath_.end()) {
    const auto free = std::find_if(slots_.begin(), slots_.end(), [](const Slot& slot) { return !slot.element; });
    const auto number = static_cast<std::uint32_t>(free - slots_.begin());
    if (free == slots_.end()) slots_.emplace_back();
    slots_[number].path = path;
    entry = byPath_.emplace(path, number).first;  // last: without memory the slot stays a free one
  }
  auto& slot = slots_[entry->second];
  if (slot.element != element) {
    slot.element = element;
    slot.presentAt = 0;
    slot.tail = nullptr;
  }
  slot.generation = std::max(slot.generation, generation);
  byElement_[element.get()] = entry->second;
  return entry->second;
}

void ResourceNode::FreeSlot(std::uint32_t number) {
  auto& slot = slots_[number];
  byPath_.erase(slot.path);
  const auto latest = byElement_.find(slot.element.get());
  if (latest != byElement_.end() && latest->second == number) byElement_.erase(latest);
  for (auto* seat : seats_) MemberOf(*seat, number) = {};
  slot = Slot{};
}

/// An element that was taken out may have another identity by now, though its removal is still to be told.
bool ResourceNode::IsPresent(Slot& slot) const {
  const auto& list = resource_->Current();
  if (slot.presentAt != list.generation) {  // asked once for all subscribers
    if (list.Find(std::string_view{slot.path}.substr(slot.path.rfind('/') + 1)) != slot.element) return false;
    slot.presentAt = list.generation;
  }
  return true;
}

Member& ResourceNode::MemberOf(Seat& seat, std::uint32_t number) {
  if (seat.members.size() <= number) seat.members.resize(number + 1);
  return seat.members[number];
}

}  // namespace zuva::serve
