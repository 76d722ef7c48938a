#include "binding/proxy/future.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

namespace qe::com {
namespace {

using namespace std::chrono_literals;

TEST(Future, GivesItsValueOnceAndIsEmptyThen) {
  Promise<std::unique_ptr<int>> promise;
  auto future = promise.get_future();
  EXPECT_EQ(future.wait_for(0ms), Future_status::timeout);
  std::thread answering{[&] { promise.set_value(std::make_unique<int>(7)); }};
  EXPECT_EQ(future.wait_for(10s), Future_status::ready);
  EXPECT_EQ(*future.get(), 7);
  answering.join();
  EXPECT_FALSE(future.valid());
  EXPECT_THROW(future.get(), std::future_error);
  EXPECT_THROW(future.wait_for(0ms), std::future_error);
}

TEST(Future, RethrowsTheStoredExceptionAndIsEmptyThen) {
  Promise<int> promise;
  auto future = promise.get_future();
  promise.set_exception(std::make_exception_ptr(std::range_error{"far"}));
  EXPECT_EQ(future.wait_for(0ms), Future_status::ready);
  EXPECT_THROW(future.get(), std::range_error);
  EXPECT_FALSE(future.valid());
}

TEST(Future, StaysUnreadyWhenThePromiseIsDropped) {
  auto promise = std::make_unique<Promise<int>>();
  auto future = promise->get_future();
  promise.reset();
  EXPECT_TRUE(future.valid());
  EXPECT_EQ(future.wait_for(1ms), Future_status::timeout);
}

TEST(Future, ErrorsSayWhatWasDoneTwice) {
  Promise<int> promise;
  auto future = promise.get_future();
  EXPECT_THROW(promise.get_future(), std::future_error);
  promise.set_value(1);
  EXPECT_THROW(promise.set_value(2), std::future_error);
  future = {};
  promise.set_value(3);  // nobody is there any more
}

}  // namespace
}  // namespace qe::com
