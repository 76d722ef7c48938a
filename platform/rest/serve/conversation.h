#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "serve/message.h"
#include "serve/outbox.h"
#include "serve/subscription.h"
#include "serve/tokens.h"
#include "zuva/server_reply.h"

namespace zuva::serve {

struct Hub;

/// Understands the messages of one client's socket and fills its outbox with the answers; holds its subscriptions. I/O thread only.
class Conversation {
 public:
  /// The socket that it is held over.
  class Socket : public Subscriber {
   public:
    /// What keeps the socket, and with it the conversation, alive while an answer is outstanding.
    virtual std::shared_ptr<Socket> Keep() = 0;
    /// Whether the client has closed its side.
    virtual bool HasLeft() = 0;
    /// Ends the socket at once.
    virtual void Abort() noexcept = 0;
    /// The answer that the last message left outstanding is in the outbox; the next message may come.
    virtual void OnAnswered() = 0;
  };

  Conversation(Hub& hub, Socket& socket, Rights rights) : hub_{hub}, socket_{socket}, rights_{rights} {}
  ~Conversation() { EndSubscriptions(); }
  Conversation(const Conversation&) = delete;
  Conversation& operator=(const Conversation&) = delete;

  /// Handles one text frame. False: the answer comes later, and no other message may be handled before it.
  bool Handle(std::string_view text);
  void EndSubscriptions();

 private:
  void Get(const Message& message, const Echo& echo);
  bool Set(Message message, const Echo& echo);
  void Subscribe(const Message& message, const Echo& echo);
  void Unsubscribe(const Message& message, const Echo& echo);
  void Answer(std::string text);
  /// What an answer that is no document reads like.
  static std::string PlainAnswer(const Echo& echo, const ServerReply::Answer& answer);
  static std::string WriteAnswer(const Echo& echo, const ServerReply* reply);

  Hub& hub_;
  Socket& socket_;
  const Rights rights_;
  std::uint64_t lastId_ = 0;
  std::unordered_map<std::string, std::unique_ptr<Subscription>> subscriptions_;  // by id
};

}  // namespace zuva::serve
