#pragma once

#include <memory>
#include <vector>

namespace xr::com::cpp_binding {

namespace proxy {
/// The bytes of one message behind its header, shared between who fills them and who sends them.
using Shared_payload = std::shared_ptr<std::vector<unsigned char>>;
}  // namespace proxy

/// An empty payload with room for `size` bytes, so that filling it allocates nothing more.
proxy::Shared_payload get_shared_payload(unsigned long size);

}  // namespace xr::com::cpp_binding
