#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "serve/outbox.h"
#include "zuva/query.h"
#include "zuva/rendered.h"
#include "zuva/server_resource.h"

namespace zuva::serve {

class SubscriptionIndex;

/// A client that is told of changes. I/O thread only.
class Subscriber {
 public:
  virtual ~Subscriber() = default;
  virtual Outbox& GetOutbox() = 0;
  /// Sends what the outbox holds, as far as the socket takes it. A client that cannot be sent to for want of memory is ended, with all
  /// its subscriptions.
  virtual void Flush() = 0;
  /// Something was lost on the way to this client, so that it cannot go on: ends its subscriptions, whether or not it throws.
  virtual void OnLost() = 0;

 private:
  friend class Touched;

  bool isTouched_ = false;
  bool hasLost_ = false;
};

/// The subscribers that the present changes concern. Their number is known when they subscribe, so that adding one takes no memory.
class Touched {
 public:
  void Reserve(std::size_t subscriptions) { list_.reserve(subscriptions); }
  void Add(Subscriber& subscriber) noexcept {
    if (!std::exchange(subscriber.isTouched_, true)) list_.push_back(&subscriber);
  }
  /// Adds one that missed something.
  void AddLost(Subscriber& subscriber) noexcept {
    subscriber.hasLost_ = true;
    Add(subscriber);
  }
  /// Lets each of them send, or end if it missed something. What one of them throws is kept from the others.
  void FlushAll() noexcept;

 private:
  std::vector<Subscriber*> list_;
};

/// What one subscription knows of one element.
struct Member {
  bool known = false;         ///< the client has it: by snapshot or `added`, and no `removed` since
  std::uint32_t mark = 0;     ///< serial of the mark that waits in the outbox; 0: none
  std::uint64_t version = 0;  ///< content that the client was told last; 0: unknown
};

class ResourceNode;

/// A subscription's place at one resource.
struct Seat {
  Subscription* subscription = nullptr;
  ResourceNode* node = nullptr;
  std::uint64_t generation = 0;  ///< of the list that the snapshot showed: later additions and removals are to be told
  std::uint32_t lastSerial = 0;
  std::vector<Member> members;  ///< by slot of the node
};

/// What a client has asked to hear: an element, a resource or a service, by path.
struct Subscription {
  Subscription() = default;
  Subscription(const Subscription&) = delete;
  Subscription& operator=(const Subscription&) = delete;
  ~Subscription();  ///< ends it, if nobody has yet

  SubscriptionIndex* index = nullptr;  ///< null once it has ended
  Subscriber* subscriber = nullptr;
  std::shared_ptr<const std::string> prefix;  ///< the beginning of all its frames
  Query query;                                ///< of a resource
  std::string elementPath;                    ///< of an element; else empty
  std::vector<std::unique_ptr<Seat>> seats;
};

/// An element at a resource that somebody listens to. An element that comes back under another path gets another slot.
struct Slot {
  std::shared_ptr<ServerElement> element;  ///< null: the slot is free
  std::string path;
  std::uint64_t generation = 0;  ///< of the latest list in which it was seen
  std::uint64_t presentAt = 0;   ///< the list in which it was looked up last, and found
  std::uint64_t tailVersion = 0;
  std::shared_ptr<const std::string> tail;  ///< the `changed` frame of that version, shared by all subscribers
};

}  // namespace zuva::serve
