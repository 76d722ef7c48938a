#pragma once

#include "ara/log/impl/record.h"

#include <chrono>
#include <cstddef>

namespace ara::log::impl {

/// Where the lines end up. Used by one thread at a time.
class Sink {
 public:
  virtual ~Sink() = default;

  /// There is a logger, which may never log a line. May come more than once for one.
  virtual void Introduce(const Logger&) {}

  /// Takes a record, which may wait here until `Flush`.
  virtual void Write(const Record& record) = 0;

  /// Hands on what waits, as one block; returns how many records could not be handed on and are lost.
  virtual std::size_t Flush() noexcept = 0;

  /// The process ends: `left` of the patience is still there for what the sink itself keeps waiting.
  virtual void Close(std::chrono::milliseconds left) noexcept = 0;

  /// How long the end of the process may wait for this sink.
  virtual std::chrono::milliseconds Patience() const noexcept = 0;
};

}  // namespace ara::log::impl
