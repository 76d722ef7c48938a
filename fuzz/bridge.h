#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

class Frontend;
class Rest;

/// The REST side of the program with all its objects and the mediator, without listeners and without an I/O thread: what there is to do is
/// done while a client waits. What clients write reaches a vehicle that agrees to everything. It is never destroyed: threads wait in it.
class Bridge {
 public:
  /// `configuration`: the text of the serving side's file.
  explicit Bridge(const std::string& configuration);

  /// The bytes with each `@` and the character behind it replaced by the path of an element, which is another one in each process; `@@`
  /// is an `@`.
  std::string WithPaths(std::string_view bytes) const;
  const std::vector<std::string>& Paths() const { return paths_; }
  /// The vehicle shows a view, changes it, and withdraws it: subscribers hear of all three.
  void ChangeSomething();

 private:
  friend class Client;

  std::shared_ptr<Rest> rest_;
  Frontend* frontend_ = nullptr;    // of the server above
  std::vector<std::string> paths_;  // of all elements
};

/// One end of a pair of sockets, of which a real session has the other. The process fails where an answer is due and does not come, or
/// where the session outlives its client.
class Client {
 public:
  explicit Client(Bridge& bridge);
  ~Client();
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  /// Returns when all is done that these bytes have set off.
  void Send(std::string_view bytes);
  /// Lets the longest time pass that a request may take, then leaves. Gives all that was received.
  std::string End();

 private:
  void Settle();
  bool Take();

  Frontend& frontend_;
  int socket_;
  std::string received_;
};

/// Fails unless the text is JSON. Long ones are not looked at: to read them again and again would be all there is to do.
void CheckJson(std::string_view text);

/// How a target cuts a client's bytes up: into pieces of this size, but not into more than some hundred, or not at all for 0.
std::vector<std::string_view> Cut(std::string_view bytes, std::size_t piece);

}  // namespace fuzz
