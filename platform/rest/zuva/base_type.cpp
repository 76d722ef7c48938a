#include "zuva/base_type.h"

namespace zuva {

ara::rest::Pointer<ogm::Object> BaseType::ToOGM() const {
  const auto lock = Lock();
  return ogm::Copy(fields_);
}

bool BaseType::HasField(std::string_view name) const {
  const auto lock = Lock();
  return fields_.HasField(name);
}

std::shared_ptr<Transaction> BaseType::GetLatestActiveTransaction() const {
  const auto lock = Lock();
  auto transaction = latestTransaction_.lock();
  if (transaction && !transaction->IsActive()) transaction.reset();
  return transaction;
}

}  // namespace zuva
