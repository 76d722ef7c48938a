#include "tests/unit/rest_tree/tree_fixture.h"

#include <algorithm>
#include <utility>

#include "ara/rest/serialize/json_serializer.h"
#include "ara/rest/serialize/json_writer.h"

namespace zuva::test {

ara::rest::Pointer<ogm::Object> Json(const std::string& text) {
  return ara::rest::serialize::JSONSerializer{}.Deserialize(text);
}

void RecordingSink::Changed(const std::shared_ptr<ServerResource>&, const std::shared_ptr<ServerElement>& element) noexcept {
  const test_support::UnfailingNew pause;
  Put("changed " + TextOf(*element));
}

void RecordingSink::Put(std::string line) {
  const std::lock_guard lock{mutex_};
  lines_.push_back(std::move(line));
}

std::vector<std::string> RecordingSink::Take() {
  const std::lock_guard lock{mutex_};
  return std::exchange(lines_, {});
}

std::size_t RecordingSink::Count(std::string_view kind) const {
  const std::lock_guard lock{mutex_};
  return static_cast<std::size_t>(std::count_if(lines_.begin(), lines_.end(), [&](const auto& line) { return line.starts_with(kind); }));
}

std::shared_ptr<Thing> Tree::Add(const std::string& type) const {
  auto thing = things->AddThing(type);
  sink->Take();
  return thing;
}

void Tree::Ask(ServerReply& reply, const std::string& target, Method method, const ogm::Object* body) const {
  auto parsed = ParseTarget(target).value();
  server->Route({method, parsed.path, std::move(parsed.query), body, {}}, reply);
}

std::string Tree::Get(const std::string& target, Method method) const {
  ServerReply reply;
  Ask(reply, target, method);
  return Described(reply);
}

std::string Tree::Post(const std::string& path, const std::string& body) const {
  ServerReply reply;
  const auto object = Json(body);
  Ask(reply, path, Method::Post, object.get());
  return Described(reply);
}

std::string Described(const ServerReply& reply) {
  if (reply.GetBody()) return reply.GetBody()->body;
  if (!reply.GetAnswer()) return "unanswered";
  const auto& answer = *reply.GetAnswer();
  return std::to_string(answer.code) + ' ' + answer.text + (answer.allow.empty() ? "" : ": " + std::string{answer.allow});
}

std::string TextOf(const BaseXObject& object) {
  return ara::rest::serialize::ToText(*object.ToOGM());
}

}  // namespace zuva::test
