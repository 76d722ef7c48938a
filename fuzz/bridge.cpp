#include "fuzz/bridge.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <optional>
#include <utility>

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <nlohmann/json.hpp>

#include "ara/log/logging.h"
#include "commmngr/communications_manager.h"
#include "fuzz/fail.h"
#include "rest/generated/zuva_server.h"
#include "rest/server/trov_zuva_server.h"
#include "serve/change_queue.h"
#include "serve/config.h"
#include "serve/documents.h"
#include "serve/http_session.h"
#include "serve/hub.h"
#include "serve/request_pool.h"
#include "zuva/frontend.h"

namespace fuzz {
namespace {

namespace asio = boost::asio;
namespace serve = zuva::serve;
namespace cmc = trov::cmc;
using trov::Opt;
using trov::Word;
using trov::Words;
using Response = trov::enums::SOMEIP_RESPONSE_TYPE;

constexpr std::chrono::seconds kPatience{10};

/// Agrees to everything.
class Vehicle final : public trov::chargingManagementCoreListener::TROVListenerInterface {
 public:
  void StartListener() override {}
  Response Update_ValueControls(cmc::DT_ChargingManagementCore_valueControls_type, const Opt<std::uint32_t>&,
                                const Opt<cmc::DT_ChargingManagementCore_valueControls_specialState>&, const std::string&) override {
    return Response::SET_SUCCESS;
  }
  Response Update_SwitchControls(cmc::DT_ChargingManagementCore_switchControls_type,
                                 const Opt<cmc::DT_ChargingManagementCore_switchControls_switchValue>&) override {
    return Response::SET_SUCCESS;
  }
  Response Update_Views(cmc::DT_ChargingManagementCore_views_type, const Opt<cmc::DT_ChargingManagementCore_views_content>&,
                        const Opt<cmc::DT_ChargingManagementCore_views_visibility>&) override {
    return Response::SET_SUCCESS;
  }
  Response Update_pastErrorInformation(cmc::DT_ChargingManagementCore_pastErrorInformation_type, const Opt<bool>&) override {
    return Response::SET_SUCCESS;
  }
  Response Update_FactoryResetInfo(cmc::DT_ChargingManagementCore_resetToFactoryData_resetToFactoryData) override {
    return Response::SET_SUCCESS;
  }
};

}  // namespace

/// The serving side as the program has it, but for listeners and the I/O thread.
class Frontend final : public zuva::Frontend {
 public:
  Frontend(zuva::Server& tree, serve::Config config) : tree_{tree}, config_{std::move(config)}, pool_{config_.requestThreads} {
    if (config_.documentRoot) documents_.emplace(*config_.documentRoot);
    tree_.SetChangeSink(changes_);
    latest = this;
  }

  void Start() override {
    hub_.emplace(tree_, config_, io_, pool_, *changes_, documents_ ? &*documents_ : nullptr);
    changes_->Open([this] { asio::post(io_, [this] { hub_->subscriptions.Drain(); }); });
  }
  void Stop() override {}
  void Announce(zuva::ServerService&, std::vector<std::string>) override {}
  void Withdraw(zuva::ServerService&) override {}

  /// Gives this end of a connection to a session.
  void Take(int descriptor) {
    asio::ip::tcp::socket socket{io_};
    socket.assign(asio::ip::tcp::v4(), descriptor);
    const auto session = std::make_shared<serve::HttpSession>(*hub_, serve::ClientStream{std::move(socket), nullptr});
    hub_->connections.Add(session);
    session->Start();
  }
  bool DoSomething() { return io_.poll() > 0; }
  bool WaitForSomething() { return io_.run_one_for(kPatience) > 0; }
  bool AwaitsAnswer() {
    bool awaits = false;
    hub_->connections.ForEach([&](serve::Connection& connection) { awaits = awaits || connection.AwaitsAnswer(); });
    return awaits;
  }
  void Sweep() {
    const auto later = serve::Clock::now() + std::chrono::seconds{config_.limits.requestSeconds + 1};
    hub_->connections.ForEach([&](serve::Connection& connection) { connection.Sweep(later); });
  }
  std::size_t Connections() const { return hub_->connections.Size(); }

  static Frontend* latest;

 private:
  zuva::Server& tree_;
  const serve::Config config_;
  const std::shared_ptr<serve::ChangeQueue> changes_ = std::make_shared<serve::ChangeQueue>();
  std::optional<serve::Documents> documents_;
  asio::io_context io_{1};
  const asio::executor_work_guard<asio::io_context::executor_type> work_{io_.get_executor()};
  serve::RequestPool pool_;
  std::optional<serve::Hub> hub_;
};
Frontend* Frontend::latest = nullptr;

class Rest final : public trov::zuvaServer::TROVZuVaServer {
 public:
  using TROVZuVaServer::Server;
  using TROVZuVaServer::TROVZuVaServer;
};

Bridge::Bridge(const std::string& configuration) {
  static const bool once = [] {
    ara::log::InitLogging("FUZZ", "fuzzing", ara::log::LogLevel::kOff, ara::log::LogMode::kConsole, "");
    return true;
  }();
  static_cast<void>(once);
  const auto mediator = std::make_shared<trov::commMngr::CommunicationsManager>();
  rest_ = std::make_shared<Rest>("charging_management_core", configuration);
  frontend_ = Frontend::latest;
  rest_->SetCommunicationsManager(mediator);
  mediator->SetZuva(rest_);
  mediator->SetSomeIp(std::make_shared<Vehicle>());
  rest_->StartServer();
  rest_->Update_Views(Word{"popup"}, Word{"chargingInformationScreen"}, Word{"newRequest"});
  rest_->Update_SwitchControls(Word{"frontLeft1FlapLockState"}, Word{"locked"}, Word{}, Words{});
  rest_->Update_ChargingPlugs(Word{"frontLeft1"}, Word{"connected"}, Word{"ready"}, Word{"GbtAc"});
  for (const auto& service : rest_->Server().GetServices()) {
    for (const auto& resource : service->GetResources()) {
      for (const auto& element : resource->GetElements()) paths_.push_back(element->GetUri().ToString());
    }
  }
}

std::string Bridge::WithPaths(std::string_view bytes) const {
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (bytes[i] != '@' || i + 1 == bytes.size()) {
      text += bytes[i];
    } else if (bytes[++i] == '@') {
      text += '@';
    } else {
      text += paths_[static_cast<unsigned char>(bytes[i]) % paths_.size()];
    }
  }
  return text;
}

void Bridge::ChangeSomething() {
  rest_->Update_Views(Word{"bcamScreen"}, Word{"bcamInformationScreen"}, Word{"newRequest"});
  rest_->Update_Views(Word{"bcamScreen"}, Word{"bcamInformationScreen"}, Word{"requestedViewVisible"});
  rest_->Update_Views(Word{"bcamScreen"}, Word{"nothing"}, Word{});
}

Client::Client(Bridge& bridge) : frontend_{*bridge.frontend_} {
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) Fail("no pair of sockets is to be had");
  socket_ = ends[0];
  frontend_.Take(ends[1]);
}

Client::~Client() {
  if (socket_ >= 0) close(socket_);
}

void Client::Send(std::string_view bytes) {
  const auto sent = send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
  static_cast<void>(sent);  // a session that has ended takes nothing
  Settle();
}

std::string Client::End() {
  frontend_.Sweep();
  Settle();
  close(std::exchange(socket_, -1));
  Settle();
  if (frontend_.Connections() > 0) Fail("a session outlives its client");
  return std::move(received_);
}

void Client::Settle() {
  for (;;) {
    const bool did = frontend_.DoSomething();
    if (Take() || did) continue;
    if (!frontend_.AwaitsAnswer()) return;
    if (!frontend_.WaitForSomething()) Fail("a request is not answered");
  }
}

bool Client::Take() {
  std::array<char, 65536> bytes;
  const auto size = socket_ < 0 ? 0 : recv(socket_, bytes.data(), bytes.size(), MSG_DONTWAIT);
  if (size <= 0) return false;
  received_.append(bytes.data(), static_cast<std::size_t>(size));
  return true;
}

void CheckJson(std::string_view text) {
  constexpr std::size_t kLongest = 4096;
  if (text.size() <= kLongest && !nlohmann::json::accept(text)) Fail("this is no JSON: " + std::string{text});
}

std::vector<std::string_view> Cut(std::string_view bytes, std::size_t piece) {
  constexpr std::size_t kMost = 256;
  std::vector<std::string_view> pieces;
  piece = piece == 0 ? bytes.size() : std::max(piece, bytes.size() / kMost);
  for (; !bytes.empty(); bytes.remove_prefix(std::min(piece, bytes.size()))) pieces.push_back(bytes.substr(0, piece));
  return pieces;
}

}  // namespace fuzz

// In place of the one with sockets; the text of the configuration comes in place of its path.
std::unique_ptr<zuva::Frontend> zuva::MakeFrontend(Server& tree, const std::string& configuration) {
  return std::make_unique<fuzz::Frontend>(tree, serve::ParseConfig(configuration));
}
