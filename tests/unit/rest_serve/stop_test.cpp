#include <dirent.h>

#include <future>
#include <memory>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "tests/support/raw_socket.h"
#include "tests/unit/rest_serve/served_tree.h"

namespace zuva::serve {
namespace {

using test::ServedTree;
using test_support::RawSocket;

std::size_t Threads() {
  std::size_t count = 0;
  DIR* const tasks = opendir("/proc/self/task");
  while (const auto* entry = readdir(tasks)) count += entry->d_name[0] != '.';
  closedir(tasks);
  return count;
}

TEST(Stop, WithoutAStartAndTwiceIsHarmless) {
  test::TestTree tree;
  EXPECT_FALSE(tree.server->Stop(true));
  tree.server->Start(false);
  EXPECT_TRUE(tree.server->Stop(true));
  EXPECT_FALSE(tree.server->Stop(true));
}

TEST(Stop, EndsClientsOfEveryKindAndAllThreads) {
  std::thread{[] {}}.join();  // with the first thread a sanitizer starts its own
  const auto before = Threads();
  ServedTree tree;
  auto socket = tree.Socket();
  socket.Subscribe("/S");
  RawSocket idle{tree.port};
  RawSocket half{tree.port};
  half.Send("GET / HT");
  RawSocket lazy{tree.port, 4096};  // takes neither its answers nor the close
  lazy.Upgrade();
  tree.things->AddThing("big")->Set("text", std::string(256U << 10U, 'x'));
  for (int i = 0; i < 32; ++i) lazy.Send(test_support::ClientFrame(0x81, R"({"action":"get","path":"/S/things","requestId":1})"));
  EXPECT_TRUE(socket.Ask({{"action", "get"}, {"path", "/"}}).contains("data"));
  auto stopped = std::async(std::launch::async, [&] { tree.server->Stop(true); });
  EXPECT_EQ(socket.WaitForClose(), 1001U);
  EXPECT_EQ(idle.ReadToEnd() + half.ReadToEnd(), "");
  EXPECT_EQ(stopped.wait_for(std::chrono::seconds{3}), std::future_status::ready);
  stopped.get();
  EXPECT_TRUE(test::WaitFor([&] { return Threads() == before; })) << "the system may show a thread a little longer than it lives";
  EXPECT_THROW(tree.Http().Get("/"), std::runtime_error);
}

TEST(Stop, WaitsForCallbacksAndAnswersThem) {
  ServedTree tree;
  const auto gate = std::make_shared<test::Gate>();
  const auto thing = tree.things->AddThing("a");
  tree.Guard(*thing, gate);
  auto socket = tree.Socket();
  socket.Send({{"action", "set"}, {"path", thing->Path()}, {"value", {{"one", "1"}}}, {"requestId", "1"}});
  auto posted = std::async(std::launch::async, [&] { return tree.Http().Post(thing->Path(), R"({"two":"2"})"); });
  ASSERT_TRUE(gate->WaitForGuests(2));
  auto queued = std::async(std::launch::async, [&] { return tree.Http().Post(thing->Path(), "{}"); });
  auto watcher = tree.Socket();
  auto stopped = std::async(std::launch::async, [&] { tree.server->Stop(true); });
  EXPECT_EQ(watcher.WaitForClose(), 1001U);
  EXPECT_NE(queued.wait_for(std::chrono::seconds{10}), std::future_status::timeout);
  EXPECT_NE(stopped.wait_for(std::chrono::milliseconds{1}), std::future_status::ready) << "callbacks still run";
  gate->Open();
  EXPECT_EQ(posted.get().status, 200U);
  EXPECT_EQ(socket.Receive().value_or(nullptr).value("status", 0), 200);
  EXPECT_EQ(socket.WaitForClose(), 1001U);
  stopped.get();
  EXPECT_EQ(gate->Guests(), 2U);
}

}  // namespace
}  // namespace zuva::serve
