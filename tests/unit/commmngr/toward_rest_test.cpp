#include <memory>

#include <gtest/gtest.h>

#include "commmngr/communications_manager.h"
#include "tests/unit/commmngr/neighbours.h"

namespace trov::testing {
namespace {

class TowardRest : public ::testing::Test {
 protected:
  TowardRest() { manager.SetZuva(rest); }

  commMngr::CommunicationsManager manager;
  std::shared_ptr<MockZuvaServer> rest = std::make_shared<::testing::StrictMock<MockZuvaServer>>();
};

TEST_F(TowardRest, ARecordWithoutATypeHasNoBusinessHere) {
  EXPECT_THROW(manager.TellZuvaToUpdate_Views({}, {}, {}), qe::com::bad_optional_access) << "listeners skip it";
}

TEST_F(TowardRest, TheNavigationTargetKeepsItsLowEightBits) {
  EXPECT_CALL(*rest, Update_NavTargetSoc(44));
  manager.TellZuvaToUpdate_NavTargetSoc(300);
}

TEST_F(TowardRest, WithoutANeighbourUpdatesAreDroppedInSilence) {
  manager.SetZuva(nullptr);
  manager.TellZuvaToUpdate_Registry(true);
  manager.TellZuvaToUpdate_NavTargetSoc(1);
  manager.TellZuvaToUpdate_ResetToFactoryData({}, {});
}

}  // namespace
}  // namespace trov::testing
