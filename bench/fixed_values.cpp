#include "bench/fixed_values.h"

#include "tools/vehicle/scenario/scenario.h"
#include "tools/vehicle/values/field_codec.h"
#include "xr/com/wire/deployment.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <utility>

namespace bench {

namespace {

using namespace std::chrono_literals;

const vehicle::Bytes kNoRecords(4);  // the length of an array, which is 0

}  // namespace

std::map<std::string, vehicle::Bytes> ValuesOfEveryField() {
  const auto scenario = vehicle::LoadScenario("default");
  std::map<std::string, vehicle::Bytes> values{scenario.values.values.begin(), scenario.values.values.end()};
  const auto say = [&](const nlohmann::json& words) {
    for (const auto& [field, records] : words.items()) {
      const auto& codec = vehicle::CodecOf(field, {});
      auto& held = values.emplace(field, kNoRecords).first->second;
      held = codec.merged(held, codec.fromJson(records, {}));
    }
  };
  vehicle::ChargingSession session{*scenario.session};
  while (!values.contains("views")) say(session.Advance(1s));
  say({{"notifications", {{{"type", "chargingNotification1"}, {"value", "dcChargingPrioritize"}, {"additionalInformation", "other"}}}}});
  return values;
}

FixedValues::FixedValues(const std::filesystem::path& deployment, std::map<std::string, vehicle::Bytes> payloads)
    : payloads_{std::move(payloads)},
      server_{context_, xr::com::wire::load_deployment(deployment), boost::asio::ip::make_address_v4("127.0.0.2"), *this} {
  server_.Offer("ChargingManagementCore");
  server_.Offer("RouteBasedEnergyContents");
}

void FixedValues::Notify(const std::string& field, vehicle::Bytes payload) {
  Set(field, std::move(payload));
  server_.Notify(field);
  context_.poll();
}

void FixedValues::OnGet(const std::string& field, vehicle::Reply reply) {
  got_.insert(field);
  reply({0, PresentValue(field)});
}

void FixedValues::OnSet(const std::string& field, const vehicle::Bytes& payload, vehicle::Reply reply) {
  if (ignoresSets_) return;
  Set(field, vehicle::CodecOf(field, {}).merged(PresentValue(field), payload));
  reply({0, payload});
}

vehicle::Bytes FixedValues::PresentValue(const std::string& field) {
  const auto payload = payloads_.find(field);
  return payload == payloads_.end() ? kNoRecords : payload->second;
}

}  // namespace bench
