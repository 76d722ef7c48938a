#pragma once

#include <memory>

#include <boost/asio/ssl/context.hpp>

#include "serve/config.h"

namespace zuva::serve {

/// The server's side of TLS 1.2 and 1.3 (RFC 5246, RFC 8446), for HTTP/1.1, with this certificate and key, which are read here and never
/// again. Throws `ConfigError` that names the file which cannot be used, and why.
std::unique_ptr<boost::asio::ssl::context> MakeTlsContext(const TlsFiles& files);

}  // namespace zuva::serve
