#pragma once

#include "ara/log/impl/sink.h"
#include "ara/log/impl/timestamp.h"

#include <memory>
#include <string>

namespace ara::log::impl {

/// One line a record on a file descriptor: standard error or a file.
class LineSink final : public Sink {
 public:
  /// Lines on standard error.
  static std::unique_ptr<Sink> OnConsole(std::string applicationId);
  /// Lines at the end of a file, which is made if need be. Throws `std::runtime_error` that names file and reason.
  static std::unique_ptr<Sink> OnFile(std::string applicationId, const std::string& path);

  ~LineSink() override;
  LineSink(const LineSink&) = delete;
  LineSink& operator=(const LineSink&) = delete;

  void Write(const Record& record) override;
  std::size_t Flush() noexcept override;
  void Close(std::chrono::milliseconds) noexcept override {}
  std::chrono::milliseconds Patience() const noexcept override { return std::chrono::seconds{2}; }

 private:
  void Append(const Record& record);
  LineSink(std::string applicationId, int descriptor, bool owned);

  const std::string applicationId_;
  const int descriptor_;
  const bool owned_;
  const bool isFile_;
  Timestamp timestamp_;
  std::string block_;
  std::size_t records_ = 0;
  std::size_t lost_ = 0;
};

}  // namespace ara::log::impl
