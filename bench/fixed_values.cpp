#include "bench/fixed_values.h"

#include "xr/com/wire/deployment.h"

namespace bench {

FixedValues::FixedValues(const std::filesystem::path& deployment)
    : server_{context_, xr::com::wire::load_deployment(deployment), boost::asio::ip::make_address_v4("127.0.0.2"), *this} {
  server_.Offer("ChargingManagementCore");
  server_.Offer("RouteBasedEnergyContents");
}

void FixedValues::OnSet(const std::string& field, const vehicle::Bytes& payload, vehicle::Reply reply) {
  Set(field, payload);
  reply({0, payload});
}

vehicle::Bytes FixedValues::PresentValue(const std::string& field) {
  const auto payload = payloads_.find(field);
  return payload == payloads_.end() ? vehicle::Bytes(4) : payload->second;  // the length of an array, which is 0
}

}  // namespace bench
