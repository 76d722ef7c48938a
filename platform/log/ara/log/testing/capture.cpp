#include "ara/log/testing/capture.h"

#include "ara/log/impl/backend.h"

#include <mutex>

namespace ara::log::testing {

using impl::Backend;

struct Capture::Store final : impl::Listener {
  void Heard(const impl::Record& record) override {
    const std::lock_guard lock{mutex};
    records.push_back({record.level, record.logger->ContextId(), std::string{record.text}});
  }

  mutable std::mutex mutex;  // guards records
  std::vector<Record> records;
};

Capture::Capture() : store_{std::make_shared<Store>()} {
  Backend::Instance().Register(store_);
}

Capture::Capture(LogLevel level) : Capture{} {
  levelsBefore_ = Backend::Instance().SetLevels({level});
}

Capture::~Capture() {
  if (levelsBefore_) Backend::Instance().SetLevels(*std::move(levelsBefore_));
  Backend::Instance().Unregister(store_.get());
}

std::vector<Record> Capture::Records() const {
  const std::lock_guard lock{store_->mutex};
  return store_->records;
}

std::vector<std::string> Capture::Lines() const {
  std::vector<std::string> lines;
  for (auto& record : Records()) lines.push_back(std::move(record.text));
  return lines;
}

}  // namespace ara::log::testing
