#pragma once

namespace test_support {

/// While it lives, the n-th `new` of its thread fails, counted from 1, and with `Scope::kAllAfter` each one behind it. A program that uses
/// it has its own `operator new`.
class FailingNew {
 public:
  enum class Scope { kOne, kAllAfter };

  explicit FailingNew(unsigned n, Scope scope = Scope::kOne) noexcept;
  ~FailingNew();
  FailingNew(const FailingNew&) = delete;
  FailingNew& operator=(const FailingNew&) = delete;

  /// False if fewer than n came.
  static bool HasFailed() noexcept;
};

/// Keeps the thread's `new` from failing, and from being counted, while it lives: for what the test does in the middle.
class UnfailingNew {
 public:
  UnfailingNew() noexcept;
  ~UnfailingNew();
  UnfailingNew(const UnfailingNew&) = delete;
  UnfailingNew& operator=(const UnfailingNew&) = delete;

 private:
  unsigned before_;
};

}  // namespace test_support
