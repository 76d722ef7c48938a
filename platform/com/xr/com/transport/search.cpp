#include "xr/com/transport/search.h"

#include <utility>

namespace xr::com::transport {

std::optional<Search_delays::Milliseconds> Search_delays::next() {
  const auto number = sent_++;
  if (number == 0) {
    std::uniform_int_distribution<Milliseconds::rep> delay{settings_.initial_delay_min.count(), settings_.initial_delay_max.count()};
    return Milliseconds{delay(random_)};
  }
  if (number > settings_.repetitions_max) return std::nullopt;
  return settings_.repetition_base_delay * (1LL << (number - 1));
}

Search::Search(boost::asio::io_context& io, const wire::Discovery_deployment& settings, std::function<void()> ask)
    : timer_{io}, delays_{settings, std::random_device{}()}, ask_{std::move(ask)} {}

void Search::start() {
  ++run_;
  delays_.reset();
  wait();
}

void Search::stop() {
  ++run_;
  timer_.cancel();
}

void Search::wait() {
  const auto delay = delays_.next();
  if (!delay) return;
  timer_.expires_after(*delay);
  timer_.async_wait([this, run = run_](boost::system::error_code error) {
    if (error || run != run_) return;
    ask_();
    wait();
  });
}

}  // namespace xr::com::transport
