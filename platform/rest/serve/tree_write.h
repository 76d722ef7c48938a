#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "serve/post_queue.h"
#include "zuva/server.h"
#include "zuva/server_reply.h"

namespace zuva::serve {

/// A client's write to an element, by HTTP or WebSocket: one pipeline with one set of answers.
class TreeWrite final : public PostTask {
 public:
  /// Called on the I/O thread, once; without a reply the write was refused unrun. One that throws has ended its connection before.
  using Done = std::function<void(const ServerReply* reply)>;
  /// Whether the client is still there; called on the I/O thread, not after `Done`.
  using Wanted = std::function<bool()>;

  /// The posted document as text, to be read on the request thread.
  TreeWrite(Server::Destination destination, std::string path, std::string text, const Preconditions& preconditions, Wanted wanted,
            Done done);
  /// The same, read already; `value` is part of `document`.
  TreeWrite(Server::Destination destination, std::string path, ara::rest::Pointer<ogm::Object> document, const ogm::Object& value,
            Wanted wanted, Done done);

  bool IsWanted() const noexcept override { return wanted_(); }
  void Run() noexcept override;
  void Finish() noexcept override;
  void Refuse() noexcept override;

 private:
  void Write();
  void Tell(const ServerReply* reply) noexcept;

  const std::string path_;
  Server::Destination destination_;
  std::string text_;
  ara::rest::Pointer<ogm::Object> document_;
  const ogm::Object* value_ = nullptr;
  const std::optional<std::string> ifMatch_;
  const std::string ifNoneMatch_;
  ServerReply reply_;
  Wanted wanted_;
  Done done_;
};

/// Whether what the path leads to can be written by clients.
bool TakesPost(const Server::Destination& destination);
/// What the client reads of a write that was refused unrun.
inline constexpr std::string_view kBusy = "Too many requests are under way";

}  // namespace zuva::serve
