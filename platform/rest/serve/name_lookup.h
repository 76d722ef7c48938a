#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <boost/asio/ip/tcp.hpp>

namespace zuva::serve {

/// Finds the addresses of a host by the system's resolver, which cannot be hurried. One search is under way at most, on a thread of its
/// own; whoever comes meanwhile waits for its end first. Any thread.
class NameLookup {
 public:
  using Clock = std::chrono::steady_clock;
  using Endpoints = std::vector<boost::asio::ip::tcp::endpoint>;
  using Resolve = std::function<Endpoints(const std::string& host, std::uint16_t port)>;

  /// The process's own, by `getaddrinfo`. Never destroyed: a search that hangs must not hold up the end of the process.
  static NameLookup& OfProcess();

  explicit NameLookup(Resolve resolve) : resolve_{std::move(resolve)} {}
  /// Waits for the search that is under way.
  ~NameLookup();
  NameLookup(const NameLookup&) = delete;
  NameLookup& operator=(const NameLookup&) = delete;

  /// Waits until the deadline. Throws `std::runtime_error` if that is over first, or what the resolver throws.
  Endpoints Find(const std::string& host, std::uint16_t port, Clock::time_point deadline);
  /// Joins the thread of a search that has ended after its caller had left.
  void JoinEnded();

 private:
  struct Search {
    bool isDone = false;
    Endpoints found;
    std::exception_ptr error;
  };

  void Run(Search& search, const std::string& host, std::uint16_t port);
  void JoinEndedLocked();
  void WaitLocked(std::unique_lock<std::mutex>& lock, const Search& search, Clock::time_point deadline);

  const Resolve resolve_;
  std::mutex mutex_;  // guards all below, and what is in a search
  std::condition_variable ended_;
  std::shared_ptr<Search> latest_;
  std::thread thread_;  // of the latest search
};

}  // namespace zuva::serve
