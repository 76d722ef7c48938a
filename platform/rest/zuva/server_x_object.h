#pragma once

#include <functional>
#include <memory>

#include "zuva/base_x_object.h"
#include "zuva/server_reply.h"

namespace zuva {

/// An object that a server serves: asks its owner before it is read and before it is written.
class ServerXObject : public BaseXObject {
 public:
  /// Called before a GET is answered. False ends the request, which the callback has then answered itself.
  using PreGetCallback = std::function<bool(std::shared_ptr<BaseXObject>, ServerReply&)>;
  /// Called with the posted object before it is written, on a request thread, without any lock. False ends the request with no change;
  /// the callback has answered it, or leaves the answer to the framework. An answer made with true ends it as well.
  using PreUpdateCallback = std::function<bool(std::shared_ptr<BaseXObject>, const ogm::Object&, ServerReply&)>;

  using BaseXObject::BaseXObject;

  /// To be set before the server starts or the object is added: it is read without a lock.
  void SetPreGetCallback(PreGetCallback callback);
  /// An object without one offers no POST.
  void SetPreUpdateCallback(PreUpdateCallback callback);
  PreUpdateCallback GetPreUpdateCallback() const;

 protected:
  bool HasPreUpdateCallback() const;
  /// Asks the pre-get callback, if there is one; false if the request ends here.
  bool AskBeforeGet(ServerReply& reply);

 private:
  PreGetCallback preGet_;
  PreUpdateCallback preUpdate_;  // guarded by the object's mutex
};

}  // namespace zuva
