#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "ara/rest/ogm.h"
#include "tests/support/failing_new.h"
#include "tests/unit/rest_serve/served_tree.h"
#include "zuva/change_sink.h"

namespace zuva::test {

namespace ogm = ara::rest::ogm;
using serve::test::Thing;
using serve::test::Things;
using serve::test::UriOf;

ara::rest::Pointer<ogm::Object> Json(const std::string& text);

/// Writes down what it is told, one line a change: "added <path> <text>", "changed <text now>", "removed <path>".
class RecordingSink final : public ChangeSink {
 public:
  void Added(const std::shared_ptr<ServerResource>&, const std::shared_ptr<ServerElement>&, std::string path,
             std::shared_ptr<const ogm::Object>, std::string text) noexcept override {
    const test_support::UnfailingNew pause;
    Put("added " + path + ' ' + text);
  }
  void Changed(const std::shared_ptr<ServerResource>&, const std::shared_ptr<ServerElement>& element) noexcept override;
  void Removed(const std::shared_ptr<ServerResource>&, const std::shared_ptr<ServerElement>&, std::string path) noexcept override {
    const test_support::UnfailingNew pause;
    Put("removed " + path);
  }
  std::vector<std::string> Take();
  std::size_t Count(std::string_view kind) const;

 private:
  void Put(std::string line);

  mutable std::mutex mutex_;  // guards lines_
  std::vector<std::string> lines_;
};

/// A server that is not started, with one service "/S", its resource "/S/things", and a second, "/S/others".
class Tree : public serve::test::TestTree {
 public:
  Tree() : Tree{std::make_shared<RecordingSink>()} {}

  std::shared_ptr<Thing> Add(const std::string& type) const;
  /// Asks for a target; the query is taken apart too.
  void Ask(ServerReply& reply, const std::string& target, Method method = Method::Get, const ogm::Object* body = nullptr) const;
  /// The body of a good answer, or else its code and text.
  std::string Get(const std::string& target, Method method = Method::Get) const;
  std::string Post(const std::string& path, const std::string& body) const;

  std::shared_ptr<RecordingSink> sink;
  std::shared_ptr<ServerService> service = server->GetServices()[0];

 private:
  explicit Tree(const std::shared_ptr<RecordingSink>& changes) : TestTree{nlohmann::json::object(), changes}, sink{changes} {}
};

std::string Described(const ServerReply& reply);
std::string TextOf(const BaseXObject& object);

}  // namespace zuva::test
