#include "ara/exec/application_client.h"

#include <stdexcept>

namespace ara::exec {

ApplicationClient::ApplicationClient() = default;

void ApplicationClient::ReportApplicationState(ApplicationState state) const {
  switch (state) {
    case ApplicationState::kRunning:
      return serviceManager_.Send("READY=1");
    case ApplicationState::kTerminating:
      return serviceManager_.Send("STOPPING=1");
  }
  throw std::runtime_error{"Unknown application state"};
}

}  // namespace ara::exec
