#include "tests/support/certificate.h"

#include <memory>

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

namespace test_support {
namespace {

template <auto Free>
struct Freed {
  template <class T>
  void operator()(T* object) const {
    Free(object);
  }
};
using Bio = std::unique_ptr<BIO, Freed<BIO_free>>;

std::string TextOf(const Bio& bio) {
  char* text = nullptr;
  const auto size = BIO_get_mem_data(bio.get(), &text);
  return {text, static_cast<std::size_t>(size)};
}

}  // namespace

Certificate MakeCertificate() {
  const std::unique_ptr<EVP_PKEY, Freed<EVP_PKEY_free>> key{EVP_EC_gen("P-256")};
  const std::unique_ptr<X509, Freed<X509_free>> x509{X509_new()};
  X509_set_version(x509.get(), 2);
  ASN1_INTEGER_set(X509_get_serialNumber(x509.get()), 1);
  X509_gmtime_adj(X509_getm_notBefore(x509.get()), -60);
  X509_gmtime_adj(X509_getm_notAfter(x509.get()), 3600);
  X509_set_pubkey(x509.get(), key.get());
  auto* const name = X509_get_subject_name(x509.get());
  X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>("localhost"), -1, -1, 0);
  X509_set_issuer_name(x509.get(), name);
  const std::unique_ptr<X509_EXTENSION, Freed<X509_EXTENSION_free>> names{
      X509V3_EXT_conf_nid(nullptr, nullptr, NID_subject_alt_name, "DNS:localhost,IP:127.0.0.1")};
  X509_add_ext(x509.get(), names.get(), -1);
  X509_sign(x509.get(), key.get(), EVP_sha256());

  const Bio certificateText{BIO_new(BIO_s_mem())}, keyText{BIO_new(BIO_s_mem())};
  PEM_write_bio_X509(certificateText.get(), x509.get());
  PEM_write_bio_PrivateKey(keyText.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr);
  return {TextOf(certificateText), TextOf(keyText)};
}

}  // namespace test_support
