#include "zuva/transaction.h"

#include <algorithm>
#include <string>
#include <utility>

#include "zuva/base_x_object.h"

namespace zuva {

std::shared_ptr<Transaction> Transaction::Begin(BaseXObject& object) {
  const auto lock = object.Lock();
  auto transaction = std::make_shared<Transaction>(object);
  object.latestTransaction_ = transaction;
  return transaction;
}

bool Transaction::HasField(std::string_view name) const {
  const std::lock_guard lock{mutex_};
  return fields_.HasField(name);
}

bool Transaction::Decides(std::string_view name) const {
  const std::lock_guard lock{mutex_};
  return fields_.HasField(name) || IsRemovedLocked(name);
}

bool Transaction::RemoveField(std::string_view name) {
  const std::lock_guard lock{mutex_};
  const bool isStored = FindStoredLocked(name) != nullptr;
  if (isStored) removed_.emplace_back(name);
  return fields_.Remove(name) || isStored;
}

bool Transaction::AddFieldNode(std::string_view name, ara::rest::Pointer<ogm::Value> initial) {
  const std::lock_guard lock{mutex_};
  if (fields_.HasField(name) || FindStoredLocked(name)) return false;
  fields_.Append(std::string{name}, std::move(initial));
  return true;
}

bool Transaction::SetFieldNode(std::string_view name, ara::rest::Pointer<ogm::Value> value) {
  const std::lock_guard lock{mutex_};
  if (!fields_.HasField(name)) {
    const auto* const stored = FindStoredLocked(name);
    fields_.Append(stored ? stored->Clone() : ara::rest::MakePointer<ogm::Field>(std::string{name}));
  }
  auto& field = *fields_.Find(name);
  const bool changed = !field.HasValue() || !field.GetValue().Equals(*value);
  if (changed) field.SetValue(std::move(value));
  return changed;
}

void Transaction::Commit() {
  {
    const std::lock_guard lock{mutex_};
    if (!std::exchange(active_, false)) return;
  }
  object_.Commit(fields_, removed_);  // inactive from here on, so nobody else changes the fields
}

bool Transaction::IsRemovedLocked(std::string_view name) const {
  return std::find(removed_.begin(), removed_.end(), name) != removed_.end();
}

const ogm::Field* Transaction::FindStoredLocked(std::string_view name) const {
  return IsRemovedLocked(name) ? nullptr : object_.fields_.Find(name);
}

bool Transaction::IsActive() const {
  const std::lock_guard lock{mutex_};
  return active_;
}

}  // namespace zuva
