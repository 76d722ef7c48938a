#include "tests/support/raw_socket.h"
#include "tests/system/system_test.h"

#include <cstddef>
#include <fstream>
#include <iterator>
#include <list>
#include <string>
#include <thread>
#include <vector>

namespace system_test {
namespace {

using test_support::RawSocket;

constexpr std::size_t kConnections = 1024;  // that the program takes at once if its configuration says nothing of it
constexpr const char* kControl = "immediateChargingOptionsTargetSoc";
const std::string kAnswer = "HTTP/1.1 ";

/// Clients that are too many, too big, too slow, or write what no client should, in front of the program as it is delivered.
class Door : public SystemTest {
 protected:
  void Open(const json& limits = json::object()) {
    auto config = root_.DefaultRestConfig();
    config["limits"] = limits;
    root_.WriteRestConfig(config.dump());
    const auto file = root_.Path() / "scenario.json";
    std::ofstream{file} << json::object();  // a vehicle that sets no limits to the values
    StartVehicle(file.string());
    bridge_.Start();
    ASSERT_TRUE(vehicle_->WaitUntilSubscribed());
  }

  std::string ControlPath() { return WaitForElement("valueControls", kControl)->value("uri", ""); }
  std::string PostHead(const std::string& path, const std::string& fields) {
    return "POST " + path + " HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/json\r\n" + fields + "\r\n\r\n";
  }
  /// What the vehicle has been set, in order, once it is as many or more.
  std::vector<json> Sets(std::size_t expected) {
    std::vector<json> sets;
    WaitFor([&] {
      sets.clear();
      for (const auto& event : vehicle_->Events())
        if (event.value("event", "") == "set") sets.push_back(event["value"][0].value("currentValue", json{}));
      return sets.size() >= expected;
    });
    return sets;
  }
  pid_t Pid() { return bridge_.Program().Pid(); }
};

TEST_F(Door, TakesItsNumberOfTwoThousandConnectionsAndTellsTheOthers) {
  constexpr std::size_t kIdle = 800, kBegun = 1200;
  if (const auto limit = test_support::RaiseFileLimit(); limit < kIdle + kBegun + 100)
    GTEST_SKIP() << "2,000 connections need more open files than the " << limit << " allowed";
  Open();
  std::list<RawSocket> idle, begun;
  const auto port = bridge_.Port();
  for (std::size_t i = 0; i < kIdle; ++i) idle.emplace_back(port);
  for (std::size_t i = 0; i < kBegun; ++i) begun.emplace_back(port).Send("GET / HTTP/1.1\r\nHost: local");

  for (auto& socket : idle) {  // they give way to those that say something
    ASSERT_EQ(socket.ReadToEnd(), "");
    ASSERT_TRUE(socket.HasEnded());
  }
  const auto firstRefused = std::next(begun.begin(), kConnections);
  for (auto socket = firstRefused; socket != begun.end(); ++socket) ASSERT_TRUE(socket->ReadToEnd().starts_with(kAnswer + "503"));
  for (auto socket = begun.begin(); socket != firstRefused; ++socket) {
    socket->Send("host\r\n\r\n");
    ASSERT_TRUE(socket->ReadUntil("\r\n").starts_with(kAnswer + "200"));
  }
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(Http().Get("/").status, 200U) << "of those that are answered one gives way";
  begun.clear();
  EXPECT_EQ(Http().Get("/").status, 200U);
  EXPECT_LT(SecondsSince(start), 1.0);
}

TEST_F(Door, RefusesBodiesOfSixtyFourMegabytesWithoutHoldingThem) {
  Open();
  const auto path = ControlPath();
  const std::string piece(1U << 20U, ' ');
  const struct {
    std::string head, before, behind;
  } ways[] = {{PostHead(path, "Content-Length: 67108864"), "", ""}, {PostHead(path, "Transfer-Encoding: chunked"), "100000\r\n", "\r\n"}};
  const auto memory = test_support::ResidentMegabytes(Pid());
  for (int time = 0; time < 2; ++time) {
    for (const auto& way : ways) {
      RawSocket socket{bridge_.Port()};
      socket.Send(way.head + way.before + piece + way.behind);
      EXPECT_TRUE(socket.ReadUntil("\r\n").starts_with(kAnswer + "413"));
      for (int i = 1; i < 64; ++i) socket.Send(way.before + piece + way.behind);
      EXPECT_EQ(Http().Get("/").status, 200U);
    }
  }
  if (!kSanitized) {
    EXPECT_LT(test_support::ResidentMegabytes(Pid()) - memory, 4.0);
  }
}

TEST_F(Door, ARequestCutAtAnyByteWritesNothing) {
  Open();
  const auto path = ControlPath();
  const auto files = test_support::OpenFiles(Pid());
  const std::string requests[] = {
      PostHead(path, "Content-Length: 19") + R"({"currentValue":55})",
      PostHead(path, "Transfer-Encoding: chunked") + "9\r\n{\"current\r\na\r\nValue\":56}\r\n0\r\n\r\n",
  };
  for (const auto& request : requests)
    for (std::size_t size = 0; size < request.size(); ++size) RawSocket{bridge_.Port()}.Send(request.substr(0, size));
  for (const auto& request : requests) {
    RawSocket socket{bridge_.Port()};
    socket.Send(request);
    EXPECT_TRUE(socket.ReadUntil("\r\n").starts_with(kAnswer + "200"));
  }
  EXPECT_EQ(Sets(2), (std::vector<json>{55, 56}));
  EXPECT_TRUE(WaitFor([&] { return test_support::OpenFiles(Pid()) <= files; })) << "connections that nobody has any more";
}

TEST_F(Door, ClientsOfOneByteASecondEndInTimeAndHoldNobodyUp) {
  Open({{"requestSeconds", 2}, {"idleSeconds", 2}});
  Http().Get("/");
  const auto files = test_support::OpenFiles(Pid());
  const std::string get = "GET /ChargingManagementCore/valueIndications HTTP/1.1\r\nHost: localhost\r\n\r\n";
  RawSocket writing{bridge_.Port()}, reading{bridge_.Port(), 4096};
  for (int i = 0; i < 2000; ++i) reading.Send(get);  // whose answers are more than the system's own buffers take
  const auto start = std::chrono::steady_clock::now();
  std::size_t written = 0;
  ASSERT_TRUE(WaitFor([&] { return test_support::OpenFiles(Pid()) == files + 2; }));
  const auto haveEnded = [&] { return test_support::OpenFiles(Pid()) <= files; };
  for (auto next = start; !haveEnded() && written < 8; next += 1s) {
    writing.Send(get.substr(written++, 1));
    EXPECT_EQ(reading.Read(1).size(), 1U);
    while (std::chrono::steady_clock::now() < next + 1s && !haveEnded()) {
      ASSERT_EQ(Http().Get("/").status, 200U);
      std::this_thread::sleep_for(5ms);
    }
  }
  EXPECT_LT(SecondsSince(start), 5.5) << "a last answer has two seconds more to be taken";
  const auto last = writing.ReadToEnd();
  EXPECT_TRUE(last.starts_with(kAnswer + "408")) << last;
}

/// A body as it stands, and its answer. What the vehicle is set is the value of the good ones.
struct OddBody {
  std::string body;
  unsigned status;
  std::string detail;
};

const std::vector<OddBody>& OddBodies() {
  static const std::string malformed = "malformed JSON", range = "Bad Request: value not in allowed range", kind = "Bad Message",
                           foreign = "Conflict: not allowed parameter(s) included";
  static const std::vector<OddBody> bodies{{R"({"currentValue":-0})", 200, ""},
                                           {R"({"currentValue":2e0})", 400, kind},
                                           {R"({"currentValue":1e400})", 400, malformed},
                                           {R"({"currentValue":9223372036854775807})", 400, range},
                                           {R"({"currentValue":9223372036854775808})", 400, kind},
                                           {R"({"currentValue":-9223372036854775808})", 400, range},
                                           {R"({"currentValue":18446744073709551671})", 400, kind},
                                           {R"({"currentValue":)" + std::string(10'000, '['), 400, "JSON nested too deep"},
                                           {R"({"currentValue":1,"current\u0056alue":2})", 400, "repeated key in a JSON object"},
                                           {R"({"currentValue\u0000":1})", 409, foreign},
                                           {std::string{"{\"currentValue\0\":1}", 19}, 400, malformed},
                                           {R"({"specialState":"off\u0000"})", 400, range},
                                           {R"({"specialState":"\ud800"})", 400, malformed}};
  return bodies;
}

TEST_F(Door, AnswersEachOddBodyByPostAndOverAWebSocket) {
  Open();
  const auto path = ControlPath();
  auto ws = bridge_.Ws();
  for (const auto& row : OddBodies()) {
    SCOPED_TRACE(row.body.substr(0, 60));
    const auto answer = Http().Post(path, row.body);
    EXPECT_EQ(answer.status, row.status);
    EXPECT_EQ(answer.Json().value("detail", ""), row.detail);
    ws.SendText(R"({"action":"set","requestId":"1","path":")" + path + R"(","value":)" + row.body + "}");
    const auto told = ws.Receive().value_or(json::object());
    EXPECT_EQ(told.contains("error") ? told["error"].value("number", 0U) : told.value("status", 0U), row.status) << told;
  }
  EXPECT_EQ(Sets(2), (std::vector<json>{0, 0}));
}

}  // namespace
}  // namespace system_test
