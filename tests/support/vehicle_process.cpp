#include "tests/support/vehicle_process.h"

#include <csignal>
#include <set>
#include <stdexcept>

namespace test_support {

namespace {

constexpr std::size_t kFieldsTheBridgeReads = 16;

}  // namespace

VehicleProcess::VehicleProcess(const TempRoot& root, std::string scenario, double speed, std::string address)
    : root_{root}, scenario_{std::move(scenario)}, speed_{speed}, address_{std::move(address)} {
  Start();
}

void VehicleProcess::Start() {
  Launch();
  if (!WaitForEvent("ready", "")) throw std::runtime_error("the vehicle does not offer; see its output in " + root_.Path().string());
}

void VehicleProcess::Launch() {
  const auto output = root_.Path() / ("vehicle-" + address_ + "-" + std::to_string(++starts_) + ".out");
  output_ = std::make_unique<LineFile>(output);
  events_.clear();
  process_ = std::make_unique<Process>(ProcessOptions{.program = ProgramBesideThisTest("vehicle"),
                                                      .arguments = {"--address", address_, "--deployment", root_.DeploymentPath().string(),
                                                                    "--scenario", scenario_, "--speed", std::to_string(speed_)},
                                                      .environment = {{"ARA_LOG", {}}},
                                                      .outputPath = output,
                                                      .errorPath = root_.Path() / "vehicle.err"});
}

void VehicleProcess::Command(const nlohmann::json& command) {
  if (!process_->WriteLine(command.dump())) throw std::runtime_error("the vehicle takes no command");
}

const std::vector<nlohmann::json>& VehicleProcess::Events() {
  const auto& lines = output_->Lines();
  while (events_.size() < lines.size()) events_.push_back(nlohmann::json::parse(lines[events_.size()], nullptr, false));
  return events_;
}

std::optional<nlohmann::json> VehicleProcess::WaitForEvent(const Matches& matches, std::size_t from, std::chrono::milliseconds deadline) {
  return WaitFor(
      [&]() -> std::optional<nlohmann::json> {
        const auto& events = Events();
        for (; from < events.size(); ++from)
          if (matches(events[from])) return events[from];
        return {};
      },
      deadline);
}

std::optional<nlohmann::json> VehicleProcess::WaitForEvent(std::string_view name, std::string_view field, std::size_t from,
                                                           std::chrono::milliseconds deadline) {
  return WaitForEvent([&](const nlohmann::json& e) { return e.value("event", "") == name && e.value("field", "") == field; }, from,
                      deadline);
}

std::optional<double> VehicleProcess::WaitUntilSubscribed(std::chrono::milliseconds deadline) {
  std::set<std::string> fields;
  const auto last = WaitForEvent(
      [&](const nlohmann::json& e) {
        if (e.value("event", "") == "subscribed") fields.insert(e.value("field", ""));
        return fields.size() == kFieldsTheBridgeReads;
      },
      0, deadline);
  const auto offer =
      WaitForEvent([](const nlohmann::json& e) { return e.value("event", "") == "offered"; }, 0, std::chrono::milliseconds{0});
  if (!last || !offer) return {};
  return last->value("t", 0.0) - offer->value("t", 0.0);
}

void VehicleProcess::Kill() {
  process_->Signal(SIGKILL);
  process_->WaitForEnd();
}

std::optional<ExitStatus> VehicleProcess::Stop() {
  process_->Signal(SIGTERM);
  return process_->WaitForEnd();
}

}  // namespace test_support
