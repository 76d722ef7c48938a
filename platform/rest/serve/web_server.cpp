#include "serve/web_server.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <stdexcept>
#include <string>
#include <utility>

#include <sys/resource.h>
#include <boost/asio/post.hpp>

#include "os/thread.h"
#include "serve/announcement.h"
#include "serve/http_session.h"
#include "serve/tls.h"
#include "zuva/logger.h"
#include "zuva/server.h"

namespace zuva::serve {

namespace asio = boost::asio;

namespace {

constexpr std::chrono::milliseconds kSweepEvery{250};
/// How long clients have to take their last answer, once a stop has begun or again since the latest callback ended.
constexpr std::chrono::seconds kPatience{1};
/// How long what is closed then may take to notice.
constexpr std::chrono::milliseconds kLastGrace{250};
/// How often a stop looks at what is left.
constexpr std::chrono::milliseconds kStopStep{50};
/// How long the next attempt waits where there was no memory to go on.
constexpr std::chrono::milliseconds kPauseAfterFailure{10};
/// What the process needs beside its clients: logs, the vehicle's sockets, libraries.
constexpr rlim_t kOtherFiles = 256;

void RaiseFileLimit(std::size_t connections) {
  rlimit limit{};
  const auto wanted = static_cast<rlim_t>(connections) + kOtherFiles;
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= wanted) return;
  limit.rlim_cur = std::min(wanted, limit.rlim_max);
  if (setrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur < wanted) {
    GetLogger().LogWarn() << "The limit of open files is below what " << connections << " connections need";
  }
}

/// For a client that finds no place: told so, as far as its socket takes that at once.
void TurnAway(asio::ip::tcp::socket socket, DateLine& date) {
  const auto response = ProblemResponse(503, "Too many connections", "Retry-After: 1\r\nConnection: close\r\n");
  boost::system::error_code ignored;  // a client that is gone need not be told
  socket.non_blocking(true, ignored);
  socket.write_some(asio::buffer(response.head + date.Get() + response.body), ignored);
}

}  // namespace

WebServer::WebServer(Server& tree, Config config)
    : tree_{tree},
      config_{std::move(config)},
      changes_{std::make_shared<ChangeQueue>()},
      registry_{config_.registry},
      tls_{config_.tls ? MakeTlsContext(*config_.tls) : nullptr},
      io_{1},
      sweep_{io_} {
  GetLogger();  // made here, where a failure can still be reported
  if (config_.documentRoot) documents_.emplace(*config_.documentRoot);
  tree_.SetChangeSink(changes_);
}

WebServer::~WebServer() {
  Stop();
}

void WebServer::Start() {
  if (thread_.joinable()) throw std::logic_error{"The server has been started already"};
  RaiseFileLimit(config_.limits.connections);
  try {
    OpenListeners();
    pool_ = std::make_unique<RequestPool>(config_.requestThreads);
    hub_ = std::make_unique<Hub>(tree_, config_, io_, *pool_, *changes_, documents_ ? &*documents_ : nullptr);
    changes_->Open([this] { asio::post(io_, [this] { hub_->subscriptions.Drain(); }); });
    for (const auto& listener : listeners_) listener->Accept([this](asio::ip::tcp::socket socket) { Take(std::move(socket)); });
    stopping_ = false;
    io_.restart();
    thread_ = os::StartThread("zuva-io", [this] { Run(); });
  } catch (...) {  // nothing stays behind of a start that fails
    changes_->Close();
    for (const auto& listener : listeners_) listener->Close();
    sweep_.cancel();
    io_.restart();
    io_.poll();  // what was started ends before what it works on goes
    listeners_.clear();
    hub_.reset();
    pool_.reset();
    throw;
  }
  for (const auto& listener : listeners_) GetLogger().LogInfo() << "Listening on " << listener->Text();
}

void WebServer::OpenListeners() {
  std::string reasons;
  for (const auto& address : config_.listen) {
    try {
      listeners_.push_back(std::make_unique<Listener>(io_, address, config_.tls.has_value()));
    } catch (const boost::system::system_error& e) {
      const auto reason = address.address + " port " + std::to_string(address.port) + ": " + e.code().message();
      GetLogger().LogWarn() << "Cannot listen on " << reason;
      reasons += (reasons.empty() ? " " : ", ") + reason;
    }
  }
  if (listeners_.empty()) throw std::runtime_error{"Cannot listen on any address:" + reasons};
  std::vector<std::string> addresses;
  for (const auto& listener : listeners_) addresses.push_back(listener->Text());
  const std::lock_guard lock{addressesMutex_};
  addresses_ = std::move(addresses);
}

void WebServer::Run() noexcept {
  while (!stopping_) Serve();
  EndServing();
}

/// Serves until it is interrupted, by the stop or by one client's trouble, such as want of memory, which is not that of the others.
void WebServer::Serve() noexcept {
  try {
    ResumeAll();
  } catch (const std::exception& e) {
    GetLogger().LogError() << "The server goes on later: " << e;
    std::this_thread::sleep_for(kPauseAfterFailure);
    return;
  }
  try {
    io_.run();
    io_.restart();
  } catch (const std::exception& e) {
    GetLogger().LogError() << "A request or event could not be handled: " << e;
  }
}

/// Begins again what goes on all the time and was ended by an exception.
void WebServer::ResumeAll() {
  for (const auto& listener : listeners_) listener->Resume();
  const bool isAtRest = hub_->connections.Size() == 0 && hub_->posts.IsIdle();
  if (!isAtRest && !sweeping_.IsUnderWay()) SweepLater();
}

/// Ends in good order what ends within the time that it is given, then the rest. Returns when the last connection and the last callback
/// have ended, or if something that has lost its way, for want of memory, holds out.
void WebServer::EndServing() noexcept {
  io_.restart();
  BeginStop();
  auto& posts = hub_->posts;
  auto cut = Clock::now() + kPatience;
  for (bool wasIdle = posts.IsIdle(), isLast = false; !io_.stopped();) {
    try {
      io_.run_for(kStopStep);
    } catch (const std::exception& e) {
      GetLogger().LogError() << "A request or event could not be handled: " << e;
    }
    posts.CatchUp();
    const bool isIdle = posts.IsIdle();
    if (isIdle && !wasIdle) cut = Clock::now() + kPatience;
    wasIdle = isIdle;
    if (Clock::now() < cut) continue;
    if (isLast) break;
    hub_->connections.ForEach([isIdle](Connection& connection) {
      if (isIdle || !connection.AwaitsAnswer()) connection.Abort();
    });
    isLast = isIdle;
    cut = Clock::now() + (isIdle ? std::chrono::milliseconds{kLastGrace} : kPatience);
  }
  hub_->connections.AbortAll();
}

/// Leaves nothing that could give the I/O thread new work.
void WebServer::BeginStop() noexcept {
  for (const auto& listener : listeners_) listener->Close();
  sweep_.cancel();
  changes_->Close();
  hub_->connections.ForEach([](Connection& connection) { connection.Stop(); });
  hub_->posts.Close();
}

void WebServer::Take(asio::ip::tcp::socket socket) {
  auto& connections = hub_->connections;
  if (connections.Size() >= config_.limits.connections && !connections.CloseLongestIdle()) {
    if (!tls_) TurnAway(std::move(socket), hub_->date);  // with TLS there is nothing to be said before a handshake
    return;
  }
  const auto session = std::make_shared<HttpSession>(*hub_, ClientStream{std::move(socket), tls_.get()});
  connections.Add(session);
  OrAbort(*session, [&] { session->Start(); });
  if (!sweeping_.IsUnderWay()) SweepLater();
}

/// Goes on as long as there is somebody to look at: a server at rest sleeps.
void WebServer::SweepLater() {
  sweep_.expires_after(kSweepEvery);
  sweep_.async_wait([this, ticket = sweeping_.Begin()](const boost::system::error_code& error) mutable {
    ticket.reset();
    if (error || stopping_ || (hub_->connections.Size() == 0 && hub_->posts.IsIdle())) return;
    SweepLater();                 // first: trouble with one client does not end the sweeps
    hub_->subscriptions.Drain();  // changes whose wake-up failed
    hub_->posts.CatchUp();
    hub_->connections.ForEach([now = Clock::now()](Connection& connection) { connection.Sweep(now); });
  });
}

void WebServer::Stop() {
  if (!thread_.joinable()) return;
  stopping_ = true;
  io_.stop();  // interrupts the I/O thread, which needs no memory
  thread_.join();
  if (registry_) registry_->BeginStop();  // what is left for the stop are the withdrawals
  pool_->Stop();
  io_.restart();
  io_.poll();  // of what did not end in time nothing stays behind that knows the hub
  hub_.reset();
  listeners_.clear();
  pool_.reset();
}

void WebServer::Announce(ServerService& service, std::vector<std::string> uris) {
  if (registry_) registry_->Announce(service.GetName(), AnnouncementOf(service, uris, OwnAddresses()));
}

void WebServer::Withdraw(ServerService& service) {
  if (registry_) registry_->Withdraw(service.GetName());
}

std::vector<std::string> WebServer::OwnAddresses() const {
  const std::lock_guard lock{addressesMutex_};
  return addresses_;
}

}  // namespace zuva::serve
