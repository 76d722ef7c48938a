#include "ara/rest/ogm.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <utility>
#include <vector>

namespace ara::rest::ogm {
namespace {

// Counts what is out, and has nothing once it is empty.
class CountingAllocator final : public Allocator {
 public:
  void* Allocate(std::size_t bytes, std::size_t alignment) override {
    if (empty) return nullptr;
    void* const memory = GetDefaultAllocator()->Allocate(bytes, alignment);
    out.emplace(memory, bytes);
    return memory;
  }
  void Deallocate(void* memory, std::size_t bytes, std::size_t alignment) noexcept override {
    wrong += out.erase({memory, bytes}) == 0;
    GetDefaultAllocator()->Deallocate(memory, bytes, alignment);
  }

  std::set<std::pair<void*, std::size_t>> out;
  std::size_t wrong = 0;
  bool empty = false;
};

template <class Exception, class Action>
std::string TextOf(Action&& action) {
  try {
    action();
  } catch (const Exception& error) {
    return error.what();
  }
  return "no exception";
}

TEST(Memory, GoesBackToItsAllocatorThroughAPointerToABase) {
  CountingAllocator allocator;
  {
    Pointer<Value> value = AllocatePointer<String>(&allocator, "text");
    const auto shared = AllocateSharedPointer<Int>(&allocator, 5);
    EXPECT_EQ(allocator.out.size(), 2U);
  }
  EXPECT_TRUE(allocator.out.empty());
  EXPECT_EQ(allocator.wrong, 0U);
}

TEST(Memory, FailuresHaveTheirTexts) {
  CountingAllocator allocator;
  allocator.empty = true;
  EXPECT_EQ(TextOf<InvalidArgumentException>([&] { AllocatePointer<Int>(&allocator); }), "ptr is null");
  EXPECT_EQ(TextOf<InvalidArgumentException>([&] { AllocateSharedPointer<Int>(&allocator); }), "ptr is null");
  std::vector<int, StdAllocator<int>> numbers{StdAllocator<int>{nullptr}};
  EXPECT_EQ(TextOf<LogicException>([&] { numbers.push_back(1); }), "Adapter has no allocator");
}

TEST(ValueTree, GetTellsMissingFromWrong) {
  Object object;
  object.Append("count", MakePointer<Int>(5));
  object.Append(MakePointer<Field>("none"));
  EXPECT_EQ(Get<Int>(object, "count").GetValue(), 5);
  EXPECT_EQ(Get<Field>(object, "count").GetParent(), &object);
  EXPECT_EQ(TextOf<DataModelException>([&] { Get<Int>(object, "other"); }), "Field 'other' does not exist");
  EXPECT_THROW(Get<String>(object, "count"), DataModelException);
  EXPECT_THROW(Get<Int>(object, "none"), DataModelException);
}

TEST(ValueTree, ACopyIsDeepAndEqualityTellsKindsAndOrder) {
  Object object;
  auto list = MakePointer<Array>();
  list->Append(MakePointer<Real>(std::nan("")));
  list->Append(MakePointer<Bool>(true));
  object.Append("list", std::move(list));
  object.Append("a", MakePointer<Int>(1));
  const auto copy = Copy(object);
  EXPECT_TRUE(*copy == object);
  Get<Array>(*copy, "list").Append(MakePointer<Null>());
  EXPECT_TRUE(*copy != object);
  const auto turned = Copy(object);
  turned->Remove("list");
  turned->Append("list", Get<Field>(object, "list").GetValue().Clone());
  EXPECT_FALSE(*turned == object);
  EXPECT_FALSE(Int{1}.Equals(Real{1}));
  EXPECT_FALSE(Int{1}.Equals(Bool{true}));
}

}  // namespace
}  // namespace ara::rest::ogm
