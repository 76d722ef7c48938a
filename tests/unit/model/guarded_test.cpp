#include "model/guarded.h"

#include <gtest/gtest.h>

#include <memory>
#include <utility>

namespace {

struct Neighbour {
  trov::Guarded<Neighbour>* place = nullptr;
  bool* sawItself = nullptr;

  ~Neighbour() {
    if (place) *sawItself = place->Get() != nullptr;
  }
};

TEST(Guarded, ReleasesTheFormerNeighbourOutsideItsLock) {
  trov::Guarded<Neighbour> place;
  bool sawItself = true;
  auto former = std::make_shared<Neighbour>();
  former->place = &place;
  former->sawItself = &sawItself;
  place.Set(std::move(former));

  place.Set({});  // the destructor asks `place` again

  EXPECT_FALSE(sawItself);
}

TEST(Guarded, ACopyOutlivesTheChange) {
  trov::Guarded<int> place{std::make_shared<int>(7)};
  const auto copy = place.Get();

  place.Set(nullptr);

  EXPECT_EQ(*copy, 7);
  EXPECT_EQ(place.Get(), nullptr);
}

}  // namespace
