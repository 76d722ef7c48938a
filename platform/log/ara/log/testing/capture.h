#pragma once

#include "ara/log/impl/levels.h"
#include "ara/log/log_level.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ara::log::testing {

struct Record {
  LogLevel level;
  std::string contextId;
  std::string text;
};

/// Collects a copy of every record of the process while it lives, whatever its logger, and whether or not logging has been started.
///
/// A record is there as soon as its stream is destroyed. Levels decide as always; given one, all loggers have it while the capture
/// lives. Any thread may log and read meanwhile. Captures may be nested, and end in reverse order.
class Capture {
 public:
  Capture();
  explicit Capture(LogLevel level);
  ~Capture();
  Capture(const Capture&) = delete;
  Capture& operator=(const Capture&) = delete;

  /// The texts in the order in which the records were made.
  std::vector<std::string> Lines() const;
  std::vector<Record> Records() const;

 private:
  struct Store;
  std::shared_ptr<Store> store_;
  std::optional<impl::Levels> levelsBefore_;
};

}  // namespace ara::log::testing
