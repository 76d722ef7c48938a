#include "tools/vehicle/vehicle.h"

#include "tools/vehicle/restart.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <csignal>
#include <memory>

namespace vehicle {

namespace net = boost::asio;
using nlohmann::ordered_json;

namespace {

const Bytes kNoRecords{0, 0, 0, 0};
constexpr std::size_t kMostAtOnce = 64;  // repetitions before the sockets get their turn

ordered_json InWords(const std::string& field, const Bytes& payload) {
  try {
    return CodecOf(field, Place{}).toJson(payload);
  } catch (const std::exception& error) {
    return std::string{"undecodable: "} + error.what();
  }
}

Behaviour BehaviourOf(const std::map<std::string, Behaviour>& behaviours, const std::string& field) {
  const auto found = behaviours.find(field);
  return found == behaviours.end() ? Behaviour{} : found->second;
}

}  // namespace

/// A repetition under way; its timer keeps it.
struct Vehicle::Repetition {
  RepeatNotification action;
  net::steady_timer timer;
  std::chrono::steady_clock::time_point began = std::chrono::steady_clock::now();
  std::size_t told = 0;
};

Vehicle::Vehicle(net::io_context& context, const xr::com::wire::Deployment& deployment, const net::ip::address_v4& address,
                 const Scenario& scenario, double speed, Reporter& reporter)
    : context_{context},
      reporter_{reporter},
      player_{context, scenario, speed, [this](const Action& action) { Execute(action); }},
      server_{context, deployment, address, *this} {
  if (scenario.session) session_.emplace(context, *scenario.session, speed, [this](const nlohmann::json& words) { Say(words); });
  for (const auto& codec : FieldCodecs()) values_.emplace(codec.field, kNoRecords);
  Execute(scenario.values);
  Execute(scenario.faults);
}

void Vehicle::Start() {
  for (const auto& service : ServiceNames()) server_.Offer(service);
  reporter_.Tell("ready", ordered_json::object());
  player_.Start();
  if (session_) session_->Start();
}

void Vehicle::Stop() {
  player_.Stop();
  if (session_) session_->Stop();
  for (const auto& service : ServiceNames()) server_.StopOffer(service);
  reporter_.Tell("stopped", ordered_json::object());
  context_.stop();
}

void Vehicle::Command(std::string_view line) {
  try {
    Execute(ParseAction(nlohmann::json::parse(line), Place{}));
  } catch (const std::exception& error) {
    reporter_.Tell("refused", {{"reason", error.what()}});
  }
}

void Vehicle::Execute(const Action& action) {
  std::visit([this](const auto& what) { Do(what); }, action);
}

void Vehicle::OnGet(const std::string& field, Reply reply) {
  reporter_.Tell("get", {{"field", field}, {"value", InWords(field, values_.at(field))}});
  const auto behaviour = BehaviourOf(onGet_, field);
  Later(behaviour.delay, [this, behaviour, field, reply = std::move(reply)] {
    if (behaviour.kind == Behaviour::Kind::good) reply({0, values_.at(field)});
    if (behaviour.kind == Behaviour::Kind::error) reply({behaviour.code, {}});
    if (behaviour.kind == Behaviour::Kind::bytes) reply({0, behaviour.payload});
  });
}

void Vehicle::OnSet(const std::string& field, const Bytes& payload, Reply reply) {
  reporter_.Tell("set", {{"field", field}, {"value", InWords(field, payload)}, {"payload", HexFromBytes(payload)}});
  const auto behaviour = BehaviourOf(onSet_, field);
  Later(behaviour.delay, [this, behaviour, field, payload, reply = std::move(reply)] {
    if (behaviour.kind == Behaviour::Kind::good) TakeSet(field, payload, reply);
    if (behaviour.kind == Behaviour::Kind::error) reply({behaviour.code, {}});
    if (behaviour.kind == Behaviour::Kind::bytes) reply({0, behaviour.payload});
  });
}

void Vehicle::Say(const nlohmann::json& words) {
  for (const auto& [field, records] : words.items()) {
    const auto& codec = CodecOf(field, Place{});
    auto& held = values_.at(field);
    auto next = codec.merged(held, codec.fromJson(records, Place{}));
    if (next == held) continue;
    held = std::move(next);
    server_.Notify(field);
  }
}

void Vehicle::TakeSet(const std::string& field, const Bytes& payload, const Reply& reply) {
  auto& held = values_.at(field);
  try {
    held = CodecOf(field, Place{}).merged(held, payload);
  } catch (const std::exception& error) {
    reporter_.Tell("refused", {{"field", field}, {"reason", error.what()}});
    return reply({static_cast<unsigned char>(ReturnCode::malformed_message), {}});
  }
  reply({0, payload});
  if (session_) session_->Session().OnSet(field, CodecOf(field, Place{}).toJson(payload));
  server_.Notify(field);
}

void Vehicle::OnOffered(const std::string& service, bool offered) {
  reporter_.Tell(offered ? "offered" : "withdrawn", {{"service", service}});
}

void Vehicle::OnSubscribed(const Subscription& subscription, bool isNew) {
  reporter_.Tell(isNew ? "subscribed" : "renewed", {{"field", subscription.field}, {"subscriber", ToText(subscription.subscriber)}});
}

void Vehicle::OnSubscriptionRefused(const std::string& field, const std::string& reason) {
  reporter_.Tell("subscriptionRefused", {{"field", field}, {"reason", reason}});
}

void Vehicle::OnUnsubscribed(const Subscription& subscription, const std::string& reason) {
  reporter_.Tell("unsubscribed", {{"field", subscription.field}, {"subscriber", ToText(subscription.subscriber)}, {"reason", reason}});
}

void Vehicle::OnConnection(const Endpoint& peer, bool open) {
  reporter_.Tell(open ? "connected" : "disconnected", {{"peer", ToText(peer)}});
}

void Vehicle::Do(const SetValues& action) {
  for (const auto& [field, payload] : action.values) {
    values_.at(field) = payload;
    server_.Notify(field);
  }
}

void Vehicle::Do(const SetFaults& action) {
  if (action.endAll) {
    onGet_.clear();
    onSet_.clear();
    refusing_.clear();
  }
  for (const auto& fault : action.faults) {
    if (fault.get) onGet_[fault.field] = *fault.get;
    if (fault.set) onSet_[fault.field] = *fault.set;
    if (fault.refusesSubscriptions == true) refusing_.insert(fault.field);
    if (fault.refusesSubscriptions == false) refusing_.erase(fault.field);
  }
}

void Vehicle::Do(const OfferServices& action) {
  for (const auto& service : action.services) server_.Offer(service);
}

void Vehicle::Do(const StopOfferServices& action) {
  for (const auto& service : action.services) server_.StopOffer(service);
}

void Vehicle::Do(const BreakTcp&) {
  server_.BreakConnections();
}

void Vehicle::Do(const Crash&) {
  (void)std::raise(SIGKILL);
}

void Vehicle::Do(const Restart&) {
  RestartProcess();
}

void Vehicle::Do(const Quit&) {
  Stop();
}

void Vehicle::Do(const SendPayload& action) {
  values_.at(action.field) = action.payload;
  server_.Notify(action.field);
}

void Vehicle::Do(const RepeatNotification& action) {
  TellNext(std::make_shared<Repetition>(Repetition{.action = action, .timer = net::steady_timer{context_}}));
}

void Vehicle::TellNext(const std::shared_ptr<Repetition>& repetition) {
  const auto& [field, payloads, gap] = repetition->action;
  const auto next = [&repetition, gap = gap] { return repetition->began + gap * repetition->told; };
  // What is late is told at once, so that the pace holds on the whole.
  const auto end = std::min(payloads.size(), repetition->told + kMostAtOnce);
  for (; repetition->told < end && next() <= std::chrono::steady_clock::now(); ++repetition->told) {
    values_.at(field) = payloads[repetition->told];
    server_.Notify(field);
  }
  if (repetition->told == payloads.size()) return reporter_.Tell("repeated", {{"field", field}, {"times", payloads.size()}});
  repetition->timer.expires_at(next());
  repetition->timer.async_wait([this, repetition](auto error) {
    if (!error) TellNext(repetition);
  });
}

void Vehicle::Do(const SendMessage& action) {
  server_.SendRaw(action.field, action.bytes);
}

void Vehicle::Do(const SendDiscovery& action) {
  server_.SendRawDiscovery(action.bytes);
}

void Vehicle::Later(std::chrono::milliseconds delay, std::function<void()> answer) {
  if (delay.count() == 0) return answer();
  const auto timer = std::make_shared<net::steady_timer>(context_, delay);
  timer->async_wait([timer, answer = std::move(answer)](auto error) {
    if (!error) answer();
  });
}

}  // namespace vehicle
