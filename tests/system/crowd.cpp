#include "tests/system/crowd.h"

#include <array>
#include <chrono>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <utility>

namespace system_test {

namespace {

using nlohmann::json;
using std::chrono::steady_clock;

constexpr std::chrono::milliseconds kWriterPause{500};

/// A change of an embedded object is told under its own path only.
json WithoutEmbedded(json element) {
  for (auto member = element.begin(); member != element.end();) member = member->is_object() ? element.erase(member) : std::next(member);
  return element;
}

class Reader final : public CrowdClient {
 public:
  Reader(test_support::Bridge& bridge, std::size_t number) : http_{bridge.Http()}, next_{number} {}
  void Turn() override {
    static constexpr std::array<std::pair<const char*, unsigned>, 6> kAsked{
        {{"/", 200},
         {"/ChargingManagementCore/valueControls", 200},
         {"/ChargingManagementCore/views?type=popup&fields=content", 200},
         {"/ChargingManagementCore/chargingProcessInformation", 200},
         {"/FactoryReset/resets", 200},
         {"/ChargingManagementCore/nothing", 404}}};
    const auto& [path, status] = kAsked[next_++ % kAsked.size()];
    if (const auto answer = http_.Get(path); answer.status != status)
      throw std::runtime_error("GET " + std::string{path} + ": " + std::to_string(answer.status) + " " + answer.body);
  }

 private:
  test_support::HttpClient http_;
  std::size_t next_;
};

/// An object that clients write, two values of its property, and what a taken one is answered with.
struct Written {
  const char* resource;
  const char* type;
  const char* property;
  std::array<json, 2> values;
  unsigned accepted;
};

const std::vector<Written>& AllWritten() {
  static const std::vector<Written> all{
      {"/ChargingManagementCore/valueControls", "immediateChargingOptionsTargetSoc", "currentValue", {1500, 1600}, 200},
      {"/ChargingManagementCore/switchControls", "immediateChargingOptionsAutounlockAc", "switchValue", {"off", "permanent"}, 200},
      {"/ChargingManagementCore/views", "popup", "visibility", {"requestedViewVisible", "requestedViewObstructed"}, 200},
      {"/ChargingManagementCore/pastErrorInformation", "pastErrorInformation1", "confirmedByUser", {true, false}, 200},
      {"/FactoryReset/resets", "", "isFactoryDefault", {true, true}, 202}};
  return all;
}

std::string PathOf(test_support::HttpClient& http, const Written& written) {
  for (const auto& element : http.Get(written.resource).Json())
    if (element.value("type", "") == written.type) return element["uri"];
  throw std::runtime_error(std::string{written.resource} + " has no " + written.type);
}

class Writer final : public CrowdClient {
 public:
  Writer(test_support::Bridge& bridge, std::size_t number, std::map<unsigned, std::size_t>& statuses)
      : written_{AllWritten()[number % AllWritten().size()]}, http_{bridge.Http()}, path_{PathOf(http_, written_)}, statuses_{statuses} {
    if (number % 2 == 1) ws_.emplace(bridge.Ws());
  }
  void Turn() override {
    std::this_thread::sleep_until(next_);
    next_ = steady_clock::now() + kWriterPause;
    const auto status = Write({{written_.property, written_.values[times_++ % 2]}});
    if (status != written_.accepted && status != 500 && status != 503)
      throw std::runtime_error("a write to " + path_ + ": " + std::to_string(status));
    ++statuses_[status];
  }

 private:
  unsigned Write(const json& value) {
    if (!ws_) return http_.Post(path_, value.dump()).status;
    const auto answer = ws_->Ask({{"action", "set"}, {"path", path_}, {"value", value}});
    return answer.contains("error") ? answer["error"].value("number", 0U) : answer.value("status", 0U);
  }

  const Written& written_;
  test_support::HttpClient http_;
  std::optional<test_support::WsClient> ws_;
  std::string path_;
  std::map<unsigned, std::size_t>& statuses_;
  std::size_t times_ = 0;
  steady_clock::time_point next_{};
};

}  // namespace

CrowdSubscriber::CrowdSubscriber(test_support::Bridge& bridge, std::string path) : path_{std::move(path)}, mirror_{bridge.Ws()} {
  mirror_.Subscribe(path_);
}

void CrowdSubscriber::Turn() {
  mirror_.CatchUp();
  if (!mirror_.IsOpen()) throw std::runtime_error("a subscriber that takes all it is told was closed");
}

std::string CrowdSubscriber::Difference(const std::map<std::string, json>& shown) const {
  json held = json::object(), expected = json::object();
  for (const auto& [path, element] : mirror_.Elements()) held[path] = WithoutEmbedded(element);
  for (const auto& [path, element] : shown)
    if (path.starts_with(path_ + "/")) expected[path] = WithoutEmbedded(element);
  return held == expected ? "" : json::diff(expected, held).dump();
}

std::unique_ptr<CrowdClient> MakeReader(test_support::Bridge& bridge, std::size_t number) {
  return std::make_unique<Reader>(bridge, number);
}
std::unique_ptr<CrowdClient> MakeWriter(test_support::Bridge& bridge, std::size_t number, std::map<unsigned, std::size_t>& statuses) {
  return std::make_unique<Writer>(bridge, number, statuses);
}

CrowdThread::CrowdThread(std::vector<std::unique_ptr<CrowdClient>> clients) : clients_{std::move(clients)}, thread_{[this] { Run(); }} {}

void CrowdThread::Stop() {
  stop_ = true;
  if (thread_.joinable()) thread_.join();
}

void CrowdThread::Run() {
  std::vector<CrowdClient*> good;
  for (const auto& client : clients_) good.push_back(client.get());
  while (!stop_ && !good.empty()) {
    std::erase_if(good, [this](CrowdClient* client) {
      if (stop_) return false;
      try {
        client->Turn();
        return false;
      } catch (const std::exception& error) {
        faults_.emplace_back(error.what());
        return true;
      }
    });
  }
}

}  // namespace system_test
