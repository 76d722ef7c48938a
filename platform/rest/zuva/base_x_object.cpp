#include "zuva/base_x_object.h"

namespace zuva {
namespace {

constexpr std::string_view kId = "id";
constexpr std::string_view kName = "name";
constexpr std::string_view kUri = "uri";

bool IsIdentity(std::string_view name) {
  return name == kId || name == kName || name == kUri;
}

void Write(ogm::Object& fields, std::string_view name, ara::rest::Pointer<ogm::Value> value) {
  if (auto* const field = fields.Find(name)) {
    field->SetValue(std::move(value));
  } else {
    fields.Append(std::string{name}, std::move(value));
  }
}

}  // namespace

BaseXObject::BaseXObject(const ara::rest::Uuid& uuid, const ara::rest::Uri& uri, std::string name)
    : uuid_{uuid}, uri_{uri}, name_{std::move(name)} {
  SetIdentityLocked(kId, uuid_.ToString());
  SetIdentityLocked(kName, name_);
  SetIdentityLocked(kUri, uri_.ToString());
}

bool BaseXObject::RemoveField(std::string_view name) {
  const ChangeScope scope{*this};
  if (const auto transaction = GetLatestActiveTransaction()) {
    if (!transaction->RemoveField(name)) return false;  // the change itself is noted by the commit
  } else {
    if (!fields_.Remove(name)) return false;
    Touch();
  }
  CallPostChangeLocked(name);
  return true;
}

void BaseXObject::Update(const ogm::Object& fields) {
  const ChangeScope scope{*this};
  const auto transaction = Transaction::Begin(*this);
  for (const auto& field : fields) {
    if (field.HasValue() && !IsIdentity(field.GetName())) SetFieldNode(field.GetName(), field.GetValue().Clone(), false);
  }
  transaction->Commit();
}

void BaseXObject::Update(const ogm::Array&) {
  throw ara::rest::DataModelException{"An object can't be updated with a list"};
}

void BaseXObject::RemoveFields(const ogm::Object& fields) {
  const ChangeScope scope{*this};
  for (const auto& field : fields) RemoveField(field.GetName());
}

BaseXObject::TransactionCommitCallback BaseXObject::GetPreTransactionCommitCallback() const {
  const auto lock = Lock();
  return preCommit_;
}

BaseXObject::TransactionCommitCallback BaseXObject::GetPostTransactionCommitCallback() const {
  const auto lock = Lock();
  return postCommit_;
}

std::shared_ptr<const ogm::Object> BaseXObject::GetSpec() const {
  const auto lock = Lock();
  return spec_;
}

void BaseXObject::SetSpec(ara::rest::Pointer<ogm::Object> spec) {
  const auto lock = Lock();
  spec_ = std::move(spec);
}

ara::rest::Uuid BaseXObject::GetUuid() const {
  const auto lock = Lock();
  return uuid_;
}

ara::rest::Uri BaseXObject::GetUri() const {
  const auto lock = Lock();
  return uri_;
}

std::string BaseXObject::GetName() const {
  const auto lock = Lock();
  return name_;
}

void BaseXObject::SetUuid(const ara::rest::Uuid& uuid) {
  const ChangeScope scope{*this};
  SetIdentityLocked(kId, uuid.ToString());  // first, as in the two below: without memory nothing has changed
  uuid_ = uuid;
}

void BaseXObject::SetUri(const ara::rest::Uri& uri) {
  const ChangeScope scope{*this};
  auto own = uri;
  SetIdentityLocked(kUri, own.ToString());
  uri_ = std::move(own);
}

void BaseXObject::SetName(std::string name) {
  const ChangeScope scope{*this};
  SetIdentityLocked(kName, name);
  name_ = std::move(name);
}

BaseXObject::PrePropertyChangeCallback BaseXObject::GetPrePropertyChangeCallback() const {
  const auto lock = Lock();
  return preChange_;
}

BaseXObject::PostPropertyChangeCallback BaseXObject::GetPostPropertyChangeCallback() const {
  const auto lock = Lock();
  return postChange_;
}

void BaseXObject::SetPrePropertyChangeCallback(PrePropertyChangeCallback callback) {
  const auto lock = Lock();
  preChange_ = std::move(callback);
}

void BaseXObject::SetPostPropertyChangeCallback(PostPropertyChangeCallback callback) {
  const auto lock = Lock();
  postChange_ = std::move(callback);
}

void BaseXObject::SetPreTransactionCommitCallback(TransactionCommitCallback callback) {
  const auto lock = Lock();
  preCommit_ = std::move(callback);
}

void BaseXObject::SetPostTransactionCommitCallback(TransactionCommitCallback callback) {
  const auto lock = Lock();
  postCommit_ = std::move(callback);
}

void BaseXObject::Touch() noexcept {
  version_.fetch_add(1, std::memory_order_release);
  touched_ = true;
}

bool BaseXObject::AddFieldNode(std::string_view name, ara::rest::Pointer<ogm::Value> initial) {
  const ChangeScope scope{*this};
  if (const auto transaction = GetLatestActiveTransaction()) {
    if (!transaction->AddFieldNode(name, std::move(initial))) return false;
  } else {
    if (fields_.HasField(name)) return false;
    fields_.Append(std::string{name}, std::move(initial));
    Touch();
  }
  CallPostChangeLocked(name);
  return true;
}

bool BaseXObject::SetFieldNode(std::string_view name, ara::rest::Pointer<ogm::Value> value, bool force) {
  if (!value) throw ara::rest::InvalidArgumentException{"ptr is null"};
  const ChangeScope scope{*this};
  CallPreChangeLocked(name, *value);
  bool changed = false;
  if (const auto transaction = GetLatestActiveTransaction()) {
    changed = transaction->SetFieldNode(name, std::move(value));
    if (force) Touch();  // the change itself is noted by the commit
  } else {
    const auto* const field = fields_.Find(name);
    changed = !field || !field->HasValue() || !field->GetValue().Equals(*value);
    if (changed) WriteLocked(name, std::move(value));
    if (changed || force) Touch();
  }
  if (changed || force) CallPostChangeLocked(name);
  return changed;
}

void BaseXObject::WriteLocked(std::string_view name, ara::rest::Pointer<ogm::Value> value) {
  Write(fields_, name, std::move(value));
}

void BaseXObject::SetIdentityLocked(std::string_view name, std::string text) {
  WriteLocked(name, ara::rest::MakePointer<ogm::String>(std::move(text)));
  Touch();
}

void BaseXObject::CallPreChangeLocked(std::string_view name, const ogm::Value& value) {
  if (!preChange_) return;
  const auto* const field = fields_.Find(name);
  const auto self = weak_from_this().lock();
  if (!field || !self) return;
  const auto callback = preChange_;  // a copy: the callback may replace itself, and change the field
  const auto before = field->Clone();
  callback(self, *before, value);
}

void BaseXObject::CallPostChangeLocked(std::string_view name) {
  if (!postChange_) return;
  const auto self = weak_from_this().lock();
  if (!self) return;
  const auto callback = postChange_;
  callback(self, std::string{name});
}

void BaseXObject::Commit(const ogm::Object& fields, const std::vector<std::string>& removed) {
  const ChangeScope scope{*this};
  const auto self = weak_from_this().lock();
  const auto before = GetPreTransactionCommitCallback();
  if (before && self) before(self, fields);
  const auto next = ogm::Copy(fields_);  // written beside the store, so that all fields reach it, or none
  bool changes = false;
  for (const auto& name : removed) changes = next->Remove(name) || changes;
  for (const auto& field : fields) {
    const auto* const stored = next->Find(field.GetName());
    if (stored && *stored == field) continue;
    Write(*next, field.GetName(), field.GetValue().Clone());
    changes = true;
  }
  if (changes) {
    fields_.Swap(*next);
    Touch();
  }
  const auto after = GetPostTransactionCommitCallback();
  if (after && self) after(self, fields);
}

}  // namespace zuva
