#include <cstdlib>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "someip/cmc/charging_management_core_listener.h"
#include "someip/cmc/charging_management_core_proxy_wrapper.h"
#include "tests/support/temp_root.h"
#include "tests/support/wait_for.h"
#include "tests/unit/binding/fakes.h"
#include "tests/unit/someip/doubles.h"

#include "ara/log/testing/capture.h"
#include "xr/com/exceptions.h"
#include "xr/com/runtime/component_singleton.h"

/// The whole of the vehicle's side and the mediator, on a port in the wire's place.
namespace trov::testing {
namespace {

using binding_test::Hex;
using binding_test::OneRecord;
using chargingManagementCoreListener::ChargingManagementCoreListener;
using chargingManagementCoreListener::ChargingManagementCoreProxyWrapper;
using enums::SOMEIP_RESPONSE_TYPE;
using ::testing::_;

constexpr std::uint16_t kValueIndications = 17;
constexpr std::uint16_t kViews = 18;

/// The port of the one proxy: keeps the events' sinks apart, and refuses the calls of one field.
class Port final : public binding_test::FakePort {
 public:
  using Sink = xr::com::cpp_binding::proxy::Event_sink;

  void subscribe(std::uint16_t field, std::weak_ptr<Sink> wanted) override { sinks_[field] = std::move(wanted); }
  std::unique_ptr<xr::com::cpp_binding::proxy::Pending_call> call(binding_test::Method_ref method,
                                                                  xr::com::cpp_binding::proxy::Shared_payload request,
                                                                  std::function<void(binding_test::Reply)> completion) override {
    if (method.field == refused) throw xr::com::Service_not_available_exception{};
    const std::lock_guard lock{mutex_};
    return FakePort::call(method, std::move(request), std::move(completion));
  }
  void NotifyOf(std::uint16_t field, const binding_test::Bytes& payload) { sinks_.at(field).lock()->event_updated(0, payload); }
  bool Has(std::size_t count) const {
    const std::lock_guard lock{mutex_};
    return calls.size() == count;
  }

  std::uint16_t refused = 99;

 private:
  std::map<std::uint16_t, std::weak_ptr<Sink>> sinks_;
  mutable std::mutex mutex_;  // guards calls while other threads make them
};

struct Source : xr::com::runtime::Port_source {
  std::shared_ptr<xr::com::cpp_binding::proxy::Client_port> open(const xr::com::connector::Service_interface_description&) override {
    return port;
  }
  std::shared_ptr<Port> port = std::make_shared<Port>();
};

class VehicleSide : public ::testing::Test {
 protected:
  VehicleSide() {
    mediator->SetZuva(rest);
    mediator->SetSomeIp(listener);
    listener->SetCommunicationsManager(mediator);
    listener->OnServiceFound({MockCmcWrapper::Handle_type{{"service", qe::com::runtime::Instance_id{"0x0001"}, source}}});
  }
  ~VehicleSide() override { listener->SetCommunicationsManager(nullptr); }  // or the two would keep each other
  Port& port() { return *source->port; }
  static std::string Rooted(const test_support::TempRoot& root) {
    ::setenv("ARA_ROOT", root.Path().c_str(), 1);
    return {};
  }

  ara::log::testing::Capture log;
  test_support::TempRoot root;
  xr::com::runtime::Component_singleton runtime{false, Rooted(root)};
  std::shared_ptr<Source> source = std::make_shared<Source>();
  std::shared_ptr<MockZuvaServer> rest = std::make_shared<::testing::StrictMock<MockZuvaServer>>();
  std::shared_ptr<commMngr::CommunicationsManager> mediator = std::make_shared<commMngr::CommunicationsManager>();
  std::shared_ptr<ChargingManagementCoreProxyWrapper> wrapper = std::make_shared<ChargingManagementCoreProxyWrapper>();
  std::shared_ptr<ChargingManagementCoreListener> listener = std::make_shared<ChargingManagementCoreListener>(wrapper);
};

TEST_F(VehicleSide, ANotificationPassesWhileASetOfItsFieldWaits) {
  EXPECT_CALL(*rest, Update_Views(Some("bcamScreen"), _, _)).WillOnce([this](auto&&...) { port().Answer(0, {0, Hex("00000000")}); });
  auto set = std::async(std::launch::async, [this] { return mediator->TellSomeIpToUpdate_Views("popup", {}, Some("newRequest")); });
  ASSERT_TRUE(test_support::WaitFor([this] { return port().Has(1); }));
  port().NotifyOf(kViews, OneRecord("2000 00000001"));
  EXPECT_EQ(set.get(), SOMEIP_RESPONSE_TYPE::SET_SUCCESS) << "answered by what the notification led to";
}

TEST_F(VehicleSide, ASetEndsTheFormerOneOfItsFieldBeforeItWaits) {
  const types::SetPayloadVariant view{cmc::DT_views_struct{}};
  EXPECT_TRUE(wrapper->SomeIp_Set(Resource::Views, view, std::chrono::seconds{0}));
  auto set = std::async(std::launch::async, [&] { return wrapper->SomeIp_Set(Resource::Views, view, std::chrono::seconds{20}); });
  EXPECT_TRUE(test_support::WaitFor([this] { return port().Has(2) && port().calls[0]->abandoned; }));
  port().Answer(1, {0, Hex("00000000")});
  EXPECT_FALSE(set.get());
}

TEST_F(VehicleSide, AThrowInTheMiddleOfTheGetsEndsTheCycleAndTheNextOneIsWhole) {
  port().refused = kValueIndications;
  listener->FetchData();
  EXPECT_EQ(log.Lines().back(), "[SomeIp][SomeIpGET -> Zuva] Cant get, service lost - Service not available exception");
  ASSERT_TRUE(port().Has(7));
  EXPECT_FALSE(port().calls[0]->abandoned) << "replaced by the next cycle only";
  EXPECT_THROW(wrapper->SomeIp_Get(Resource::Views, {}), std::future_error) << "behind the one that threw nothing has changed";

  port().refused = 99;
  auto cycle = std::async(std::launch::async, [this] { listener->FetchData(); });
  ASSERT_TRUE(test_support::WaitFor([this] { return port().Has(7 + 15); }));
  EXPECT_CALL(*rest, Update_Views(Some("popup"), _, _));
  for (std::size_t call = 7; call < 7 + 15; ++call) {
    port().Answer(call, {0, port().calls[call]->method.field == kViews ? OneRecord("2000 00000000") : Hex("00000000")});
  }
  cycle.get();
  for (std::size_t call = 0; call < 7; ++call) EXPECT_TRUE(port().calls[call]->abandoned) << call;
}

}  // namespace
}  // namespace trov::testing
