#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "ara/rest/exceptions.h"
#include "ara/rest/uri.h"
#include "ara/rest/uuid.h"

namespace zuva {

/// A list at one instant, as a range of shared pointers. Holds what it shows, so it can be walked in place of a call:
/// `for (const auto& element : resource.GetElements())`.
template <class T>
class Snapshot {
 public:
  using Items = std::vector<std::shared_ptr<T>>;
  using value_type = std::shared_ptr<T>;
  using const_iterator = typename Items::const_iterator;

  explicit Snapshot(std::shared_ptr<const Items> items) : items_{std::move(items)} {}
  auto begin() const noexcept { return items_->begin(); }
  auto end() const noexcept { return items_->end(); }
  std::size_t size() const noexcept { return items_->size(); }
  bool empty() const noexcept { return items_->empty(); }
  const std::shared_ptr<T>& operator[](std::size_t index) const { return (*items_)[index]; }

 private:
  std::shared_ptr<const Items> items_;
};

/// Objects in the order in which they were added, each found by the last segment of the URI that it had then. The list is replaced
/// whole at each change. Any thread, but where an operation says otherwise.
template <class T>
class Container {
 public:
  /// What an object was found by when it was added.
  struct Label {
    std::string path;
    ara::rest::Uuid uuid;

    std::string_view Key() const noexcept { return std::string_view{path}.substr(path.rfind('/') + 1); }
    /// Whether the last segment is this text, or else this identifier in other letters.
    bool Names(const ara::rest::Uuid& id, std::string_view text) const noexcept {
      return Key() == text || ara::rest::Uuid::Parse(Key()) == id;
    }
  };
  /// The objects at one instant, and the number of that instant.
  struct List {
    std::uint64_t generation = 0;
    std::shared_ptr<const std::vector<std::shared_ptr<T>>> items = std::make_shared<const std::vector<std::shared_ptr<T>>>();
    std::vector<Label> labels;  // as the items
    std::unordered_map<ara::rest::Uuid, std::size_t> byUuid;

    /// By the last segment of the URI. An identifier may be written in capitals.
    std::shared_ptr<T> Find(std::string_view key) const {
      if (const auto uuid = ara::rest::Uuid::Parse(key)) {
        const auto found = byUuid.find(*uuid);
        if (found != byUuid.end() && labels[found->second].Names(*uuid, key)) return (*items)[found->second];
      }
      for (std::size_t i = 0; i != labels.size(); ++i) {
        if (labels[i].Key() == key) return (*items)[i];
      }
      return nullptr;
    }
  };

  /// The list as the I/O thread sees it: takes the lock only after a change. I/O thread only.
  const List& Current() const {
    if (seen_->generation != GetGeneration()) seen_ = GetList();
    return *seen_;
  }

  /// The framework does not call it.
  std::size_t GetSize() const { return GetList()->items->size(); }
  /// Null if there is none; the first one added if several have the same identifier.
  std::shared_ptr<T> FindByUuid(const ara::rest::Uuid& uuid) const {
    const auto list = GetList();
    const auto found = list->byUuid.find(uuid);
    return found == list->byUuid.end() ? nullptr : (*list->items)[found->second];
  }
  /// Null if there is none. The framework does not call it.
  std::shared_ptr<T> FindByUri(const ara::rest::Uri& uri) const {
    const auto list = GetList();
    for (std::size_t i = 0; i != list->labels.size(); ++i) {
      if (list->labels[i].path == uri.GetText()) return (*list->items)[i];
    }
    return nullptr;
  }
  /// By the last segment of the URI; null if there is none.
  std::shared_ptr<T> FindBySegment(std::string_view segment) const { return GetList()->Find(segment); }
  /// The same without a lock unless the list changed. I/O thread only.
  std::shared_ptr<T> FindBySegmentOnIo(std::string_view segment) const { return Current().Find(segment); }
  /// Grows with each change of the list. Read in a `ChangeSink`'s `Added` or `Removed`, it is the number of the list after that change.
  std::uint64_t GetGeneration() const noexcept { return generation_.load(std::memory_order_acquire); }

 protected:
  ~Container() = default;

  std::shared_ptr<const List> GetList() const {
    const std::lock_guard lock{listMutex_};
    return list_;
  }
  /// Adds the object and runs the step before anybody can see another change. False, and nothing done, if it is there already. Throws
  /// `InvalidArgumentException` if the pointer is null or another object has the last segment; the step does not throw, so that list and
  /// objects agree whatever happens.
  template <class Step>
  bool Insert(const std::shared_ptr<T>& object, Step&& step) {
    static_assert(noexcept(step()));
    if (!object) throw ara::rest::InvalidArgumentException{"ptr is null"};
    Label label{object->GetUri().ToString(), object->GetUuid()};
    const std::lock_guard lock{listMutex_};
    for (std::size_t i = 0; i != list_->labels.size(); ++i) {
      if ((*list_->items)[i] == object) return false;
      if (list_->labels[i].Key() == label.Key()) throw ara::rest::InvalidArgumentException{"'" + label.path + "' exists already"};
    }
    auto items = *list_->items;
    auto labels = list_->labels;
    items.push_back(object);
    labels.push_back(std::move(label));
    ReplaceLocked(std::move(items), std::move(labels));
    step();
    return true;
  }
  /// Takes the object out and runs the step with the path that it had. False if it isn't there.
  template <class Step>
  bool Erase(const std::shared_ptr<T>& object, Step&& step) {
    static_assert(noexcept(step(std::string{})));
    const std::lock_guard lock{listMutex_};
    auto items = *list_->items;
    auto labels = list_->labels;
    for (std::size_t i = 0; i != items.size(); ++i) {
      if (items[i] != object) continue;
      auto path = std::move(labels[i].path);
      items.erase(items.begin() + static_cast<std::ptrdiff_t>(i));
      labels.erase(labels.begin() + static_cast<std::ptrdiff_t>(i));
      ReplaceLocked(std::move(items), std::move(labels));
      step(std::move(path));
      return true;
    }
    return false;
  }

 private:
  void ReplaceLocked(std::vector<std::shared_ptr<T>> items, std::vector<Label> labels) {
    auto next = std::make_shared<List>();
    next->generation = list_->generation + 1;
    for (std::size_t i = 0; i != labels.size(); ++i) next->byUuid.emplace(labels[i].uuid, i);
    next->items = std::make_shared<const std::vector<std::shared_ptr<T>>>(std::move(items));
    next->labels = std::move(labels);
    list_ = std::move(next);
    generation_.store(list_->generation, std::memory_order_release);
  }

  mutable std::mutex listMutex_;  // guards list_; no object's lock is taken under it
  std::shared_ptr<const List> list_ = std::make_shared<const List>();
  std::atomic<std::uint64_t> generation_{0};
  mutable std::shared_ptr<const List> seen_ = list_;  // I/O thread only
};

}  // namespace zuva
