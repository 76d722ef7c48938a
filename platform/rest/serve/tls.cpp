#include "serve/tls.h"

#include <string_view>

#include <openssl/ssl.h>

#include "serve/staging.h"

namespace zuva::serve {

namespace ssl = boost::asio::ssl;

namespace {

[[noreturn]] void Refuse(const char* key, const std::string& path, const boost::system::error_code& error) {
  throw ConfigError{"tls." + std::string{key} + ": cannot use " + path + ": " + error.message()};
}

/// For TLS 1.2: authenticated encryption with ephemeral keys, in the server's order (RFC 9325 section 4.2). All of 1.3 are so.
constexpr const char* kCiphers = "ECDHE+AESGCM:ECDHE+CHACHA20";

/// A client that names protocols (RFC 7301) must name this one; it is refused else.
int ChooseProtocol(SSL*, const unsigned char** chosen, unsigned char* size, const unsigned char* offered, unsigned int offeredSize, void*) {
  constexpr std::string_view kHttp = "\x08http/1.1";
  unsigned char* found = nullptr;
  const auto result = SSL_select_next_proto(&found, size, reinterpret_cast<const unsigned char*>(kHttp.data()),
                                            static_cast<unsigned int>(kHttp.size()), offered, offeredSize);
  *chosen = found;
  return result == OPENSSL_NPN_NEGOTIATED ? SSL_TLSEXT_ERR_OK : SSL_TLSEXT_ERR_ALERT_FATAL;
}

}  // namespace

std::unique_ptr<ssl::context> MakeTlsContext(const TlsFiles& files) {
  auto context = std::make_unique<ssl::context>(ssl::context::tls_server);
  auto* const native = context->native_handle();
  SSL_CTX_set_min_proto_version(native, TLS1_2_VERSION);
  SSL_CTX_set_options(native, SSL_OP_NO_RENEGOTIATION | SSL_OP_NO_COMPRESSION | SSL_OP_CIPHER_SERVER_PREFERENCE);
  SSL_CTX_set_alpn_select_cb(native, &ChooseProtocol, nullptr);
  SSL_CTX_set_mode(native, SSL_MODE_RELEASE_BUFFERS);  // an idle client keeps no room for records
  boost::system::error_code error;
  if (SSL_CTX_set_cipher_list(native, kCiphers) != 1) throw ConfigError{"tls: the library lacks the ciphers"};
  // Nobody is there to type a password.
  context->set_password_callback([](std::size_t, ssl::context::password_purpose) { return std::string{}; }, error);
  context->use_certificate_chain_file(Staged(files.certificate), error);
  if (error) Refuse("certificate", files.certificate, error);
  context->use_private_key_file(Staged(files.key), ssl::context::pem, error);  // fails as well if it does not belong to the certificate
  if (error) Refuse("key", files.key, error);
  return context;
}

}  // namespace zuva::serve
