#include "tests/support/failing_new.h"

#include <cstddef>
#include <cstdlib>
#include <new>
#include <utility>

namespace test_support {
namespace {

thread_local unsigned left = 0;  // until one fails; 0: none does
thread_local bool failed = false;
thread_local bool goesOnFailing = false;

void* Allocate(std::size_t size, std::size_t alignment) {
  if (left != 0 && --left == 0) {
    failed = true;
    if (goesOnFailing) left = 1;
    throw std::bad_alloc{};
  }
  void* memory = nullptr;
  if (posix_memalign(&memory, alignment, size) != 0) throw std::bad_alloc{};
  return memory;
}

}  // namespace

FailingNew::FailingNew(unsigned n, Scope scope) noexcept {
  left = n;
  failed = false;
  goesOnFailing = scope == Scope::kAllAfter;
}
FailingNew::~FailingNew() {
  left = 0;
}
bool FailingNew::HasFailed() noexcept {
  return failed;
}

UnfailingNew::UnfailingNew() noexcept : before_{std::exchange(left, 0)} {}
UnfailingNew::~UnfailingNew() {
  left = before_;
}

}  // namespace test_support

void* operator new(std::size_t size) {
  return test_support::Allocate(size, alignof(std::max_align_t));
}
void* operator new(std::size_t size, std::align_val_t alignment) {
  return test_support::Allocate(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
  std::free(memory);
}
