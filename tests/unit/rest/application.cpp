#include "tests/unit/rest/application.h"

#include <stdexcept>

#include "ara/rest/serialize/json_serializer.h"
#include "ara/rest/serialize/json_writer.h"
#include "zuva/change_sink.h"
#include "zuva/frontend.h"
#include "zuva/request.h"

namespace rest_test {
namespace {

Told told{};  // by the test's own thread alone

class CountingSink : public zuva::ChangeSink {
 public:
  void Added(const std::shared_ptr<zuva::ServerResource>&, const std::shared_ptr<zuva::ServerElement>&, std::string,
             std::shared_ptr<const zuva::ogm::Object>, std::string) noexcept override {
    ++told[0];
  }
  void Changed(const std::shared_ptr<zuva::ServerResource>&, const std::shared_ptr<zuva::ServerElement>&) noexcept override { ++told[1]; }
  void Removed(const std::shared_ptr<zuva::ServerResource>&, const std::shared_ptr<zuva::ServerElement>&, std::string) noexcept override {
    ++told[2];
  }
};

class RecordingFrontend : public zuva::Frontend {
 public:
  void Start() override { TheOutside().Note("serve"); }
  void Stop() override { TheOutside().Note("stop"); }
  void Announce(zuva::ServerService& service, std::vector<std::string> uris) override {
    for (const auto& uri : uris) TheOutside().Note("announce " + service.GetName() + " at " + uri);
  }
  void Withdraw(zuva::ServerService& service) override { TheOutside().Note("withdraw " + service.GetName()); }
};

std::string Text(const trov::Word& word) {
  return word.has_value() ? word.value() : "-";
}

}  // namespace

void Outside::Note(std::string line) {
  const std::lock_guard lock{mutex_};
  lines_.push_back(std::move(line));
}

void Outside::Clear() {
  const std::lock_guard lock{mutex_};
  lines_.clear();
}

std::vector<std::string> Outside::Lines() const {
  const std::lock_guard lock{mutex_};
  return lines_;
}

Told TakeTold() {
  return std::exchange(told, {});
}

Outside& TheOutside() {
  static Outside outside;
  return outside;
}

trov::enums::SOMEIP_RESPONSE_TYPE RecordingMediator::Answer(std::string line) {
  asked.push_back(std::move(line));
  meanwhile();
  return response;
}

trov::enums::SOMEIP_RESPONSE_TYPE RecordingMediator::TellSomeIpToUpdate_SwitchControls(const std::string& type,
                                                                                       const trov::Word& switchValue) {
  return Answer("switch " + type + ' ' + Text(switchValue));
}
trov::enums::SOMEIP_RESPONSE_TYPE RecordingMediator::TellSomeIpToUpdate_ValueControls(const std::string& type,
                                                                                      const trov::Opt<std::uint32_t>& currentValue,
                                                                                      const trov::Word& specialState) {
  return Answer("value " + type + ' ' + (currentValue.has_value() ? std::to_string(currentValue.value()) : "-") + ' ' + Text(specialState));
}
trov::enums::SOMEIP_RESPONSE_TYPE RecordingMediator::TellSomeIpToUpdate_Views(const std::string& type, const trov::Word& content,
                                                                              const trov::Word& visibility) {
  return Answer("view " + type + ' ' + Text(content) + ' ' + Text(visibility));
}
trov::enums::SOMEIP_RESPONSE_TYPE RecordingMediator::TellSomeIpToUpdate_pastErrorInformation(const std::string& type,
                                                                                             const trov::Opt<bool>& confirmedByUser) {
  return Answer("past error " + type + (confirmedByUser.value() ? " true" : " false"));
}
trov::enums::SOMEIP_RESPONSE_TYPE RecordingMediator::TellSomeIpToUpdate_ResetStatus(const trov::Word& resetToFactoryData) {
  return Answer("reset " + Text(resetToFactoryData));
}

Application::Application(const std::string& configPath) : TROVZuVaServer{"charging_management_core", configPath} {
  SetCommunicationsManager(mediator);
  TheOutside().Clear();
}

std::unique_ptr<Application> Application::Populated() {
  auto application = std::make_unique<Application>();
  application->PopulateServer();
  application->RegisterPreUpdateCallBacks();
  return application;
}

std::pair<int, std::string> Application::Post(const std::string& path, const std::string& body) {
  const auto posted = ara::rest::serialize::JSONSerializer{}.Deserialize(body);
  zuva::ServerReply reply;
  Server().Route({zuva::Method::Post, path, {}, posted.get(), {}}, reply);
  if (reply.GetBody()) return {200, ""};
  return {reply.GetAnswer()->code, reply.GetAnswer()->internal ? "internal" : reply.GetAnswer()->text};
}

int Application::Status(const std::string& path) {
  zuva::ServerReply reply;
  Server().Route({zuva::Method::Get, path, {}, nullptr, {}}, reply);
  return reply.GetBody() ? 200 : reply.GetAnswer()->code;
}

nlohmann::ordered_json Application::Get(const std::string& path) {
  zuva::ServerReply reply;
  Server().Route({zuva::Method::Get, path, {}, nullptr, {}}, reply);
  if (!reply.GetBody()) throw std::runtime_error{path + " is not there"};
  return nlohmann::ordered_json::parse(reply.GetBody()->body);
}

nlohmann::ordered_json Application::Object(const std::string& resource, const std::string& type) {
  for (const auto& object : Get("/ChargingManagementCore/" + resource)) {
    if (object.value("type", "") == type) return object;
  }
  return nullptr;
}

std::pair<int, std::string> Application::PostTo(const std::string& resource, const std::string& type, const std::string& body) {
  return Post(Object(resource, type).at("uri"), body);
}

nlohmann::ordered_json TreeOf(const zuva::BaseXObject& object) {
  return nlohmann::ordered_json::parse(ara::rest::serialize::ToText(*object.ToOGM()));
}

}  // namespace rest_test

// The tests' own serving side takes the place of the one with sockets.
std::unique_ptr<zuva::Frontend> zuva::MakeFrontend(Server& tree, const std::string& configPath) {
  if (configPath == rest_test::kWrongConfiguration) throw std::runtime_error{"wrong"};
  tree.SetChangeSink(std::make_shared<rest_test::CountingSink>());
  return std::make_unique<rest_test::RecordingFrontend>();
}
