#include "xr/com/transport/find_thread.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include "client_fixture.h"

namespace com_test {
namespace {

using testing::ElementsAre;
using xr::com::transport::Find;
using xr::com::transport::Find_thread;
using xr::com::transport::Instance_list;

/// A list that is told apart by its length.
Instance_list list_of(std::size_t size) {
  return {size, {"service", qe::com::runtime::Instance_id{"0x0001"}, nullptr}};
}

/// A find whose handler records the lengths and can be held up.
class Slow_find {
 public:
  std::shared_ptr<Find> make() {
    return std::make_shared<Find>("service", 1, std::nullopt, [this](Instance_list list) {
      told.put(list.size());
      gate.next();
      return true;
    });
  }

  Inbox<std::size_t> told;
  Inbox<int> gate;
};

TEST(FindThread, AtItsBoundTheTwoOldestOfOneFindGoTogether) {
  ara::log::testing::Capture log;
  Slow_find slow, other;
  Find_thread thread;
  const auto find = slow.make(), other_find = other.make();
  thread.post(find, list_of(100));
  EXPECT_EQ(slow.told.next(), 100U);  // its handler now holds up the thread
  thread.post(other_find, list_of(1));
  for (std::size_t i = 1; i < Find_thread::kMaximumWaiting; ++i) thread.post(find, list_of(i));
  EXPECT_THAT(log.Lines(), ElementsAre());
  thread.post(find, list_of(50));
  EXPECT_THAT(log.Lines(), ElementsAre(testing::HasSubstr("two changes of the list")));

  for (int i = 0; i < 20; ++i) slow.gate.put(0), other.gate.put(0);
  for (std::size_t i = 3; i < Find_thread::kMaximumWaiting; ++i) EXPECT_EQ(slow.told.next(), i);
  EXPECT_EQ(slow.told.next(), 50U);
  EXPECT_EQ(other.told.next(), 1U) << "the other find lost nothing";
}

TEST(FindThread, AHandlerThatThrowsEndsNothingAndAnEndedFindHearsNothing) {
  ara::log::testing::Capture log;
  Slow_find slow;
  Find_thread thread;
  const auto find = slow.make();
  thread.post(find, list_of(1));
  EXPECT_EQ(slow.told.next(), 1U);  // its handler now holds up the thread
  const auto bad = std::make_shared<Find>("bad", 1, std::nullopt, [](const Instance_list&) -> bool { throw std::runtime_error{"why"}; });
  auto ended = slow.make();
  thread.post(bad, {});
  thread.post(ended, list_of(7));
  ended.reset();
  thread.post(find, list_of(8));
  for (int i = 0; i < 3; ++i) slow.gate.put(0);
  EXPECT_EQ(slow.told.next(), 8U);
  EXPECT_THAT(log.Lines(), ElementsAre("A find handler of bad threw: why"));
}

}  // namespace
}  // namespace com_test
