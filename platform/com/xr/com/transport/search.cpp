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
    : alarm_{io,
             [this] {
               wait();  // first: a find that cannot be sent must not be the last
               ask_();
             }},
      delays_{settings, std::random_device{}()},
      ask_{std::move(ask)} {}

void Search::start() {
  delays_.reset();
  wait();
}

void Search::stop() {
  running_ = false;
  alarm_.cancel();
}

void Search::wait() {
  running_ = false;
  if (const auto delay = delays_.next()) alarm_.set_after(*delay);
  running_ = true;
}

}  // namespace xr::com::transport
