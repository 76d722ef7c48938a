#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl/context.hpp>
#include <boost/asio/steady_timer.hpp>

#include "serve/change_queue.h"
#include "serve/config.h"
#include "serve/documents.h"
#include "serve/hub.h"
#include "serve/listener.h"
#include "serve/pending.h"
#include "serve/registry_client.h"
#include "serve/request_pool.h"
#include "zuva/frontend.h"

namespace zuva::serve {

/// Serves a tree by HTTP and WebSocket: one thread for all sockets, and the request threads.
class WebServer final : public Frontend {
 public:
  /// Reads certificate and key, if there are any; throws `ConfigError` for those, or a folder of documents, that cannot be used.
  WebServer(Server& tree, Config config);
  ~WebServer() override;

  /// Throws `std::runtime_error` if there is no address to listen on; one that fails while another works is a warning. Once only.
  void Start() override;
  /// Lets callbacks that run end and be answered, says goodbye to WebSockets, and joins all threads. Returns at most 2 s after the last
  /// callback has, whatever clients do.
  void Stop() override;
  /// Both do nothing without a registry in the configuration: then the services that the tree itself says are announced are all there is.
  void Announce(ServerService& service, std::vector<std::string> uris) override;
  void Withdraw(ServerService& service) override;

 private:
  void OpenListeners();
  void Run() noexcept;
  void Serve() noexcept;
  void ResumeAll();
  void EndServing() noexcept;
  void BeginStop() noexcept;
  void Take(boost::asio::ip::tcp::socket socket);
  void SweepLater();
  std::vector<std::string> OwnAddresses() const;

  Server& tree_;
  const Config config_;
  const std::shared_ptr<ChangeQueue> changes_;
  std::optional<RegistryClient> registry_;
  const std::unique_ptr<boost::asio::ssl::context> tls_;  // null: none
  std::optional<Documents> documents_;                    // I/O thread only
  mutable std::mutex addressesMutex_;                     // guards addresses_, which announcements ask for on threads of their own
  std::vector<std::string> addresses_;                    // of the listeners, as URIs without a path
  boost::asio::io_context io_;
  std::unique_ptr<RequestPool> pool_;
  std::unique_ptr<Hub> hub_;
  std::vector<std::unique_ptr<Listener>> listeners_;
  boost::asio::steady_timer sweep_;
  Pending sweeping_;
  std::atomic<bool> stopping_{false};
  std::thread thread_;  // the I/O thread
};

}  // namespace zuva::serve
