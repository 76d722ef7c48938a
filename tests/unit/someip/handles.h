#pragma once

#include <string>

#include "xr/com/instance_id.h"
#include "xr/com/runtime/service_instance.h"

namespace trov::testing {

/// A handle of an instance that exists in a test only: no proxy can be made from it.
template <class Wrapper>
typename Wrapper::Handle_type Handle(const std::string& instance) {
  return typename Wrapper::Handle_type{xr::com::runtime::Service_instance{"service", qe::com::runtime::Instance_id{instance}, nullptr}};
}

}  // namespace trov::testing
