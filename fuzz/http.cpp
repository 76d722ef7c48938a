#include "serve/message.h"
#include "serve/request_reader.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// A client's bytes, once as requests of a connection, once as a WebSocket text frame.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text{reinterpret_cast<const char*>(data), size};
  zuva::serve::Echo echo;
  std::string fault;
  zuva::serve::ReadMessage(text, echo, fault);

  zuva::serve::RequestReader reader{8192, 65536};
  std::span<const char> rest{text.data(), text.size()};
  reader.Next();
  while (!rest.empty()) {
    std::size_t taken = 0;
    const auto state = reader.Take(rest, taken);
    rest = rest.subspan(taken);
    if (state == zuva::serve::ReadState::kComplete) {
      reader.Next();
    } else if (state != zuva::serve::ReadState::kHead || taken == 0) {
      return 0;
    }
  }
  return 0;
}
