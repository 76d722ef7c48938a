#pragma once

#include <string>

namespace test_support {

/// A key pair and the certificate that it has signed itself, for "localhost" and 127.0.0.1; both in PEM.
struct Certificate {
  std::string certificate;
  std::string key;
};

Certificate MakeCertificate();

}  // namespace test_support
