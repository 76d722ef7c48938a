#pragma once

#include "binding/incidents/identity.h"
#include "binding/proxy/service_info.h"
#include "xr/com/client_port.h"

#include <cstddef>
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

/// A call as its future and its method hold it: whoever goes first gives it up, and from then on a late answer finds nobody. Any thread.
class Open_call {
 public:
  Open_call() = default;
  ~Open_call() = default;
  Open_call(const Open_call&) = delete;
  Open_call& operator=(const Open_call&) = delete;

  /// Once, by whoever made the call.
  void set(std::unique_ptr<Pending_call> call);
  void give_up() noexcept;
  /// Whether an answer or a failure has come, also before it was given up.
  bool is_ready() const;

 private:
  mutable std::mutex mutex_;  // guards the members below
  std::unique_ptr<Pending_call> call_;
  bool wasReady_ = false;
};

/// What all methods share: the call itself, and the list of those still open. Any thread.
class Method_impl_base {
 public:
  Method_impl_base(const Method_impl_base&) = delete;
  Method_impl_base& operator=(const Method_impl_base&) = delete;

 protected:
  Method_impl_base(Method_context context, std::shared_ptr<Client_port> port);

  /// Runs the cleanups: each call that never became ready is an incident, and those still open are given up. Waits for nothing.
  ~Method_impl_base();

  /// @throws Service_not_available_exception
  void throw_if_not_available() const;

  /// Hands the request to the transport. The result belongs to the future of the call: when that goes, so does the call.
  /// @throws as `Client_port::call`.
  std::shared_ptr<const void> send(Shared_payload request, const std::shared_ptr<Answer>& answer);

  const Method_context& context() const { return *context_; }

 private:
  struct Cleanup {
    std::weak_ptr<Answer> promise;  // gone when the call was completed, given up, or out of its time
    std::shared_ptr<Open_call> call;
  };
  void add_cleanup(std::weak_ptr<Answer> promise, std::shared_ptr<Open_call> call);
  void remove_ended_locked();

  const std::shared_ptr<const Method_context> context_;
  const std::shared_ptr<Client_port> port_;

  std::mutex mutex_;  // guards the members below
  std::vector<Cleanup> cleanups_;
  std::size_t neverReady_ = 0;  // calls that are off the list without having become ready
};

}  // namespace xr::com::cpp_binding::proxy
