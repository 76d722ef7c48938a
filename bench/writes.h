#pragma once

#include "bench/answer.h"
#include "bench/program.h"

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace bench {

/// What one client writes over and over: one of two values in turn, and each eighth time one that is to be refused.
class Write {
 public:
  /// Of one property of the element. What is accepted or refused is answered with these statuses.
  struct Kind {
    const char* resource;
    const char* property;
    std::array<nlohmann::json, 2> values;
    unsigned accepted;
    nlohmann::json bad;
    unsigned refused;
  };
  Write(const Kind& kind, const nlohmann::json& element, std::uint16_t port);

  const std::string& Request(std::size_t time) const { return requests_[IsBad(time) ? 2 : time % 2]; }
  /// Whether this is the right answer to the request of that time, when others write the same object and the vehicle answers.
  bool IsRight(std::size_t time, const Answer& answer) const;

 private:
  static bool IsBad(std::size_t time) { return time % 8 == 7; }

  Kind kind_;
  std::string id_;
  std::array<std::string, 3> requests_;
};

/// So many writers, spread over the objects of all five kinds. Needs a vehicle that shows the popup.
std::vector<Write> WritesOfAllKinds(const Program& bridge, std::size_t writers);

}  // namespace bench
