#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "ara/rest/exceptions.h"

namespace ara::rest {

/// Where value trees and shared objects get their memory from. Safe on any thread. A null result means that there is none left.
class Allocator {
 public:
  virtual ~Allocator() = default;
  virtual void* Allocate(std::size_t bytes, std::size_t alignment) = 0;
  virtual void Deallocate(void* memory, std::size_t bytes, std::size_t alignment) noexcept = 0;
};

/// The process-wide allocator; lives until the process ends.
Allocator* GetDefaultAllocator() noexcept;

/// Adapter for standard containers. One without an allocator throws `LogicException` at its first use.
template <class T>
class StdAllocator {
 public:
  using value_type = T;

  StdAllocator() noexcept : allocator_{GetDefaultAllocator()} {}
  explicit StdAllocator(Allocator* allocator) noexcept : allocator_{allocator} {}
  template <class U>
  StdAllocator(const StdAllocator<U>& other) noexcept : allocator_{other.GetAllocator()} {}

  T* allocate(std::size_t count) {
    if (!allocator_) throw LogicException{"Adapter has no allocator"};
    if (count > static_cast<std::size_t>(-1) / sizeof(T)) throw std::bad_array_new_length{};
    void* const memory = allocator_->Allocate(count * sizeof(T), alignof(T));
    if (!memory) throw InvalidArgumentException{"ptr is null"};
    return static_cast<T*>(memory);
  }
  void deallocate(T* memory, std::size_t count) noexcept { allocator_->Deallocate(memory, count * sizeof(T), alignof(T)); }

  Allocator* GetAllocator() const noexcept { return allocator_; }

  template <class U>
  bool operator==(const StdAllocator<U>& other) const noexcept {
    return allocator_ == other.GetAllocator();
  }

 private:
  Allocator* allocator_;
};

namespace impl {

/// Remembers the allocator and the size of the object as it was made, so that a pointer to a base gives the right block back.
class Deleter {
 public:
  Deleter() noexcept = default;
  Deleter(Allocator* allocator, std::size_t bytes, std::size_t alignment) noexcept
      : allocator_{allocator}, bytes_{bytes}, alignment_{alignment} {}

  template <class T>
  void operator()(T* object) const noexcept {
    void* block = nullptr;
    if constexpr (std::is_polymorphic_v<T>) {
      static_assert(std::has_virtual_destructor_v<T>);
      block = const_cast<void*>(dynamic_cast<const void*>(object));
    } else {
      block = const_cast<std::remove_cv_t<T>*>(object);
    }
    std::destroy_at(object);
    allocator_->Deallocate(block, bytes_, alignment_);
  }

 private:
  Allocator* allocator_ = nullptr;
  std::size_t bytes_ = 0;
  std::size_t alignment_ = 0;
};

}  // namespace impl

template <class T>
using Pointer = std::unique_ptr<T, impl::Deleter>;

/// Makes an object with the given allocator. Throws `LogicException` without one, `InvalidArgumentException` "ptr is null" if it has no
/// memory.
template <class T, class... Args>
Pointer<T> AllocatePointer(Allocator* allocator, Args&&... args) {
  StdAllocator<T> adapter{allocator};
  T* const memory = adapter.allocate(1);
  try {
    return Pointer<T>{std::construct_at(memory, std::forward<Args>(args)...), impl::Deleter{allocator, sizeof(T), alignof(T)}};
  } catch (...) {
    adapter.deallocate(memory, 1);
    throw;
  }
}

/// The same with the default allocator.
template <class T, class... Args>
Pointer<T> MakePointer(Args&&... args) {
  return AllocatePointer<T>(GetDefaultAllocator(), std::forward<Args>(args)...);
}

/// A shared object with the given allocator; throws as `AllocatePointer` does.
template <class T, class... Args>
std::shared_ptr<T> AllocateSharedPointer(Allocator* allocator, Args&&... args) {
  return std::allocate_shared<T>(StdAllocator<T>{allocator}, std::forward<Args>(args)...);
}

/// The same with the default allocator.
template <class T, class... Args>
std::shared_ptr<T> MakeSharedPointer(Args&&... args) {
  return AllocateSharedPointer<T>(GetDefaultAllocator(), std::forward<Args>(args)...);
}

}  // namespace ara::rest
