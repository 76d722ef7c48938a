#pragma once

#include <string>

#include "fuzz/bridge.h"

namespace fuzz {

/// The two servers that clients' bytes go to. Their limits are low, so that inputs reach them.
class Bridges {
 public:
  Bridge& Chosen(bool guarded) { return *(guarded ? guarded_ : open_); }

 private:
  static inline const std::string kLimits =
      R"("listen": [{"address": "127.0.0.1", "port": 0}], "requestThreads": 1, "limits": {"headerBytes": 1024, "bodyBytes": 1024,
      "idleSeconds": 20, "requestSeconds": 11, "pendingBytesPerClient": 65536, "subscriptionsPerClient": 4})";

  Bridge* const open_ = new Bridge{"{" + kLimits + "}"};
  Bridge* const guarded_ =
      new Bridge{"{" + kLimits + R"(, "tokens": [{"token": "w", "write": true}, {"token": "r"}], "allowedHosts": ["car"],
      "allowedOrigins": ["http://app"], "documentRoot": ")" FUZZ_DOCUMENTS R"("})"};
};

}  // namespace fuzz
