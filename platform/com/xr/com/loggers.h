#pragma once

namespace ara::log {
class Logger;
}

namespace ara::com {
/// The logger of the incidents.
ara::log::Logger& logger();
}  // namespace ara::com

namespace xr::com::cpp_binding {
/// The logger of the transport and of the binding's runtime.
ara::log::Logger& logger();
}  // namespace xr::com::cpp_binding
