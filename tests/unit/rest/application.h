#pragma once

#include <array>
#include <functional>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "commmngr/interfaces/comm_mngr_zuva_side_interface.h"
#include "rest/generated/zuva_server.h"
#include "rest/server/trov_zuva_server.h"

namespace rest_test {

/// What the application asked of the registry and of the sockets, in order.
class Outside {
 public:
  void Note(std::string line);
  void Clear();
  std::vector<std::string> Lines() const;

 private:
  mutable std::mutex mutex_;  // guards lines_
  std::vector<std::string> lines_;
};
Outside& TheOutside();

/// How many events subscribers are told of: added, changed, removed.
using Told = std::array<int, 3>;
/// What was told since the last call.
Told TakeTold();

/// Answers every set with `response`, and tells what it was asked.
class RecordingMediator : public trov::commMngr::CommMngrZuvaSideInterface {
 public:
  trov::enums::SOMEIP_RESPONSE_TYPE response = trov::enums::SOMEIP_RESPONSE_TYPE::SET_SUCCESS;
  std::vector<std::string> asked;
  std::function<void()> meanwhile = [] {};  // runs while the caller waits for the vehicle

  trov::enums::SOMEIP_RESPONSE_TYPE TellSomeIpToUpdate_SwitchControls(const std::string& type, const trov::Word& switchValue) override;
  trov::enums::SOMEIP_RESPONSE_TYPE TellSomeIpToUpdate_ValueControls(const std::string& type, const trov::Opt<std::uint32_t>& currentValue,
                                                                     const trov::Word& specialState) override;
  trov::enums::SOMEIP_RESPONSE_TYPE TellSomeIpToUpdate_Views(const std::string& type, const trov::Word& content,
                                                             const trov::Word& visibility) override;
  trov::enums::SOMEIP_RESPONSE_TYPE TellSomeIpToUpdate_pastErrorInformation(const std::string& type,
                                                                            const trov::Opt<bool>& confirmedByUser) override;
  trov::enums::SOMEIP_RESPONSE_TYPE TellSomeIpToUpdate_ResetStatus(const trov::Word& resetToFactoryData) override;
  void TellSomeIpToStartListener() override { TheOutside().Note("listeners start"); }

 private:
  trov::enums::SOMEIP_RESPONSE_TYPE Answer(std::string line);
};

/// The configuration that the server can not be made with.
inline constexpr const char* kWrongConfiguration = "wrong.json";

/// The REST application on the object tree, without sockets and with a fresh outside: requests go straight to the walk over the tree.
class Application : public trov::zuvaServer::TROVZuVaServer {
 public:
  explicit Application(const std::string& configPath = "right.json");
  using TROVZuVaServer::Server;

  /// With objects and write path, as `StartServer` leaves them.
  static std::unique_ptr<Application> Populated();

  std::pair<int, std::string> Post(const std::string& path, const std::string& body);
  int Status(const std::string& path);
  nlohmann::ordered_json Get(const std::string& path);
  /// The object of this type, null if there is none.
  nlohmann::ordered_json Object(const std::string& resource, const std::string& type);
  std::pair<int, std::string> PostTo(const std::string& resource, const std::string& type, const std::string& body);

  std::shared_ptr<RecordingMediator> mediator = std::make_shared<RecordingMediator>();
};

/// The JSON text of an object's tree, read back.
nlohmann::ordered_json TreeOf(const zuva::BaseXObject& object);

}  // namespace rest_test
