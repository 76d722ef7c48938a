#include "serve/tls.h"

#include <openssl/ssl.h>

#include "serve/staging.h"

namespace zuva::serve {

namespace ssl = boost::asio::ssl;

namespace {

[[noreturn]] void Refuse(const char* key, const std::string& path, const boost::system::error_code& error) {
  throw ConfigError{"tls." + std::string{key} + ": cannot use " + path + ": " + error.message()};
}

}  // namespace

std::unique_ptr<ssl::context> MakeTlsContext(const TlsFiles& files) {
  auto context = std::make_unique<ssl::context>(ssl::context::tls_server);
  auto* const native = context->native_handle();
  SSL_CTX_set_min_proto_version(native, TLS1_2_VERSION);
  SSL_CTX_set_options(native, SSL_OP_NO_RENEGOTIATION | SSL_OP_NO_COMPRESSION);
  SSL_CTX_set_mode(native, SSL_MODE_RELEASE_BUFFERS);  // an idle client keeps no room for records
  boost::system::error_code error;
  // Nobody is there to type a password.
  context->set_password_callback([](std::size_t, ssl::context::password_purpose) { return std::string{}; }, error);
  context->use_certificate_chain_file(Staged(files.certificate), error);
  if (error) Refuse("certificate", files.certificate, error);
  context->use_private_key_file(Staged(files.key), ssl::context::pem, error);  // fails as well if it does not belong to the certificate
  if (error) Refuse("key", files.key, error);
  return context;
}

}  // namespace zuva::serve
