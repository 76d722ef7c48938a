#include "zuva/server_x_object.h"

#include <utility>

namespace zuva {

void ServerXObject::SetPreGetCallback(PreGetCallback callback) {
  preGet_ = std::move(callback);
}

void ServerXObject::SetPreUpdateCallback(PreUpdateCallback callback) {
  const auto lock = Lock();
  preUpdate_ = std::move(callback);
}

ServerXObject::PreUpdateCallback ServerXObject::GetPreUpdateCallback() const {
  const auto lock = Lock();
  return preUpdate_;
}

bool ServerXObject::HasPreUpdateCallback() const {
  const auto lock = Lock();
  return preUpdate_ != nullptr;
}

bool ServerXObject::AskBeforeGet(ServerReply& reply) {
  if (!preGet_) return true;
  return preGet_(shared_from_this(), reply) && !reply.IsAnswered();
}

}  // namespace zuva
