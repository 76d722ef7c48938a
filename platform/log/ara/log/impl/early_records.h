#pragma once

#include "ara/log/impl/record.h"

#include <cstddef>
#include <deque>
#include <exception>
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

  /// Without memory the record counts as dropped.
  void Keep(const Record& record) noexcept {
    try {
      Add(record);
    } catch (const std::exception&) {
      ++kept_.dropped;
    }
  }

  /// All that was kept; nothing is left.
  Kept Take() noexcept { return std::exchange(kept_, {}); }

 private:
  void Add(const Record& record) {
    if (kept_.records.size() == kLimit) {
      kept_.records.pop_front();
      ++kept_.dropped;
    }
    kept_.records.push_back({{record.time, record.level, record.logger, {}}, std::string{record.text}});
  }

  Kept kept_;
};

}  // namespace ara::log::impl
