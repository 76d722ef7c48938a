#pragma once

#include "binding/incidents/identity.h"
#include "binding/proxy/service_info.h"
#include "xr/com/client_port.h"

#include <cstdint>
#include <exception>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace xr::com::cpp_binding::proxy {

/// What a method is, apart from its types. Shared with the completions of its calls, which may outlive the method.
struct Method_context {
  Service_info service;
  std::string instance;
  Method_ref method;
  std::uint16_t id;  // as incidents show it
  /// The exception that the service description gives for a return code, or none.
  std::exception_ptr (*applicationError)(unsigned char code, const std::vector<unsigned char>& data);

  log::Identity identity() const { return {{service.name}, instance}; }
};

/// Where the answer of one call goes.
class Answer {
 public:
  virtual ~Answer() = default;
  /// Decodes the payload and answers; fails as the codec does.
  virtual void set_value_from(const std::vector<unsigned char>& payload) = 0;
  virtual void set_exception(std::exception_ptr exception) = 0;
};

namespace detail {

/// What a call ends with that was answered by `code`, which is not 0. Writes the incident.
std::exception_ptr handle_error(const Method_context& context, unsigned char code, const std::vector<unsigned char>& data);

/// Ends a call: value, error or failure to decode. Never throws.
void complete(const Method_context& context, Answer& answer, const Reply& reply);

}  // namespace detail

/// What all methods share: the call itself, and the list of those still open. Any thread.
class Method_impl_base {
 public:
  Method_impl_base(const Method_impl_base&) = delete;
  Method_impl_base& operator=(const Method_impl_base&) = delete;

 protected:
  Method_impl_base(Method_context context, std::shared_ptr<Client_port> port);

  /// Runs the cleanups: each call still open becomes an incident and is abandoned. Waits for nothing.
  ~Method_impl_base();

  /// @throws Service_not_available_exception
  void throw_if_not_available() const;

  /// Hands the request to the transport. @throws as `Client_port::call`.
  void send(Shared_payload request, const std::shared_ptr<Answer>& answer);

  const Method_context& context() const { return *context_; }

 private:
  struct Cleanup {
    std::weak_ptr<Answer> promise;  // gone when the call was completed or given up by the transport
    std::unique_ptr<Pending_call> call;

    bool is_over() const { return promise.expired() || call->is_ready(); }
  };
  void add_cleanup(std::weak_ptr<Answer> promise, std::unique_ptr<Pending_call> call);

  const std::shared_ptr<const Method_context> context_;
  const std::shared_ptr<Client_port> port_;

  std::mutex mutex_;  // guards cleanups_
  std::vector<Cleanup> cleanups_;
};

}  // namespace xr::com::cpp_binding::proxy
