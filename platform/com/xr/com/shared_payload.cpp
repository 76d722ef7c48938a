#include "xr/com/shared_payload.h"

xr::com::cpp_binding::proxy::Shared_payload xr::com::cpp_binding::get_shared_payload(unsigned long size) {
  auto payload = std::make_shared<std::vector<unsigned char>>();
  payload->reserve(size);
  return payload;
}
