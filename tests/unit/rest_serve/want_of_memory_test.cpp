#include <pthread.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <memory>
#include <new>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/raw_socket.h"
#include "tests/unit/rest_serve/served_tree.h"

namespace {

std::atomic<int> left{0};  // of the server's threads' allocations, until one fails; 0: none does

bool IsServer() {
  thread_local const bool is = [] {
    std::array<char, 16> name{};
    pthread_getname_np(pthread_self(), name.data(), name.size());
    return std::string_view{name.data()}.starts_with("zuva-");
  }();
  return is;
}

}  // namespace

void* operator new(std::size_t size) {
  if (left > 0 && IsServer() && --left == 0) throw std::bad_alloc{};
  if (void* const memory = std::malloc(size)) return memory;
  throw std::bad_alloc{};
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

namespace zuva::serve {
namespace {

using nlohmann::json;
using test::ServedTree;

class WantOfMemory : public testing::Test {
 protected:
  WantOfMemory() {
    gate->Open();
    tree.Guard(*thing, gate);
  }
  ~WantOfMemory() override { left = 0; }

  json Set(const std::string& text) const {
    return {{"action", "set"}, {"path", thing->Path()}, {"value", {{"text", text}}}, {"requestId", "1"}};
  }
  /// What clients do; it may fail anywhere, but only for the client that it meets.
  void Use(const std::string& text) {
    const std::function<void()> uses[]{
        [&] {  // more at once than ever before: what is kept for reuse runs out
          for (int i = 0; i < 4 && crowd.size() < 200; ++i) crowd.push_back(std::make_unique<test_support::RawSocket>(tree.port));
        },
        [&] { tree.Http().Get("/S/things?type=a"); },
        [&] {
          tree.Http().Post(thing->Path(), json{{"text", text}}.dump(), {{"If-Match", "*"}});
        },
        [&] { tree.Socket().Ask(Set(text + "!")); },
    };
    for (const auto& use : uses) {
      const auto begin = std::chrono::steady_clock::now();
      try {
        use();
      } catch (const std::runtime_error&) {  // its connection was ended
      }
      EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds{3}) << text;
    }
  }
  bool Serves(const std::string& text) {
    auto socket = tree.Socket();
    socket.Subscribe("/S");
    if (tree.Http().Post(thing->Path(), json{{"text", text}}.dump()).status != 200) return false;
    if (!socket.WaitForEvent([&](const json& message) { return message.contains("data") && message["data"]["text"] == text; }))
      return false;
    return socket.Ask(Set(text + "!")).value("status", 0) == 200 && tree.Http().Get("/S/things").Json()[0]["text"] == text + "!";
  }

  std::shared_ptr<test::Gate> gate = std::make_shared<test::Gate>();
  ServedTree tree;
  std::shared_ptr<test::Thing> thing = tree.things->AddThing("a");
  std::vector<std::unique_ptr<test_support::RawSocket>> crowd;
};

TEST_F(WantOfMemory, EndsNoMoreThanTheConnectionThatItMeets) {
  ASSERT_TRUE(Serves("before"));
  bool failed = true;
  for (int n = 1; failed; ++n) {
    left = n;
    Use("during " + std::to_string(n));
    failed = left.exchange(0) <= 0;
    ASSERT_TRUE(Serves("after " + std::to_string(n))) << n;
  }
}

TEST_F(WantOfMemory, DelaysNoStop) {
  bool failed = true;
  for (int n = 1; failed; ++n) {
    auto socket = tree.Socket();
    socket.Subscribe("/S");
    test_support::RawSocket idle{tree.port};
    tree.Http().Get("/");
    left = n;
    const auto begin = std::chrono::steady_clock::now();
    tree.server->Stop(true);
    failed = left.exchange(0) <= 0;
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds{2}) << n;
    tree.Restart();
  }
}

}  // namespace
}  // namespace zuva::serve
