#include "ara/phm/phm_client.h"

namespace ara::phm {

Phm_client::Phm_client(const std::string& processName) : alive_{FindAliveSupervision(processName)} {}

void Phm_client::ReportCheckpoint(unsigned short supervision, unsigned short checkpoint) const {
  if (alive_ != nullptr && alive_->supervision == supervision && alive_->checkpoint == checkpoint) {
    serviceManager_.Send("WATCHDOG=1");
  } else {
    serviceManager_.Send("STATUS=Supervision " + std::to_string(supervision) + " reached checkpoint " + std::to_string(checkpoint));
  }
}

void Phm_client::ReportHealthMode(unsigned short channel, unsigned int mode) const {
  serviceManager_.Send("STATUS=Health channel " + std::to_string(channel) + " is in mode " + std::to_string(mode));
}

}  // namespace ara::phm
