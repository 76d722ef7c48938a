#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "ara/rest/ogm.h"
#include "zuva/change_sink.h"
#include "zuva/frontend.h"
#include "zuva/server.h"

namespace zuva::test {

namespace ogm = ara::rest::ogm;

ara::rest::Uri UriOf(const std::string& text);
ara::rest::Pointer<ogm::Object> Json(const std::string& text);

/// An element that may embed others, as the application's composites do.
class Thing : public ServerElement {
 public:
  Thing(const std::string& uri, const ara::rest::Uuid& uuid, std::string name) : ServerElement{uuid, UriOf(uri), std::move(name)} {}

  void Embed(const std::string& property, const std::shared_ptr<Thing>& object);
  ara::rest::Pointer<ogm::Object> ToOGM() const override;
};

class Things : public ServerResource {
 public:
  explicit Things(const std::string& uri, std::string name = "things");
  std::shared_ptr<ServerElement> MakeElement(const ara::rest::Uuid& uuid, const ara::rest::Uri& uri, std::string name) override;
};

/// Writes down what it is told, one line a change: "added <path> <text>", "changed <text now>", "removed <path>".
class RecordingSink final : public ChangeSink {
 public:
  void Added(const std::shared_ptr<ServerResource>&, const std::shared_ptr<ServerElement>&, std::string path,
             std::shared_ptr<const ogm::Object> tree, std::string text) override;
  void Changed(const std::shared_ptr<ServerResource>&, const std::shared_ptr<ServerElement>& element) override;
  void Removed(const std::shared_ptr<ServerResource>&, const std::shared_ptr<ServerElement>&, std::string path) override;
  std::vector<std::string> Take();
  std::size_t Count(std::string_view kind) const;

 private:
  void Put(std::string line);

  mutable std::mutex mutex_;  // guards lines_
  std::vector<std::string> lines_;
};

/// Stands in for the serving side, for all servers of this process; writes down its calls.
struct FrontendLog {
  static std::vector<std::string> Lines();
  static void Put(std::string line);
  static void Clear();
  inline static std::shared_ptr<RecordingSink> sink;  // of the server made last
};

/// A server with one service "/S", its resource "/S/things", and a second, "/S/others".
class Tree {
 public:
  Tree();

  std::shared_ptr<Thing> Make(const std::string& type) const;
  std::shared_ptr<Thing> Add(const std::string& type) const;
  /// Asks for a target; the query is taken apart too.
  void Ask(ServerReply& reply, const std::string& target, Method method = Method::Get, const ogm::Object* body = nullptr) const;
  /// The body of a good answer, or else its code and text.
  std::string Get(const std::string& target) const;
  std::string Post(const std::string& path, const std::string& body) const;

  std::shared_ptr<Server> server;
  std::shared_ptr<ServerService> service;
  std::shared_ptr<Things> things;
  std::shared_ptr<Things> others;
  std::shared_ptr<RecordingSink> sink;
};

std::string Described(const ServerReply& reply);
std::string PathOf(const ServerElement& element);
std::string TextOf(const BaseXObject& object);

}  // namespace zuva::test
