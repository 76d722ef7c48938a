#pragma once

#include "ara/log/impl/record.h"

#include <cstddef>
#include <deque>
#include <string>
#include <utility>

namespace ara::log::impl {

/// The records made before there is a sink: at most `kLimit` of them, the oldest are dropped. Not thread-safe.
class EarlyRecords {
 public:
  static constexpr std::size_t kLimit = 1024;

  struct Owned {
    Record record;  // its text is empty and stands beside it
    std::string text;
  };
  struct Kept {
    std::deque<Owned> records;
    std::size_t dropped = 0;
  };

  void Keep(const Record& record) {
    if (kept_.records.size() == kLimit) {
      kept_.records.pop_front();
      ++kept_.dropped;
    }
    kept_.records.push_back({{record.time, record.level, record.logger, {}}, std::string{record.text}});
  }

  /// All that was kept; nothing is left.
  Kept Take() { return std::exchange(kept_, {}); }

 private:
  Kept kept_;
};

}  // namespace ara::log::impl
