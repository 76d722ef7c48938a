#include "ara/rest/allocator.h"

namespace ara::rest {
namespace {

class HeapAllocator final : public Allocator {
 public:
  void* Allocate(std::size_t bytes, std::size_t alignment) override {
    return ::operator new (bytes, std::align_val_t{alignment}, std::nothrow);
  }
  void Deallocate(void* memory, std::size_t, std::size_t alignment) noexcept override {
    ::operator delete (memory, std::align_val_t{alignment});
  }
};

}  // namespace

Allocator* GetDefaultAllocator() noexcept {
  // Never destroyed: objects with static life time may give their memory back late.
  alignas(HeapAllocator) static unsigned char storage[sizeof(HeapAllocator)];
  static HeapAllocator* const allocator = ::new (storage) HeapAllocator;
  return allocator;
}

}  // namespace ara::rest
