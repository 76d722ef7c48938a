#include "tests/unit/rest_tree/tree_fixture.h"

#include <algorithm>
#include <utility>

#include "ara/rest/serialize/json_serializer.h"
#include "ara/rest/serialize/json_writer.h"

namespace zuva::test {
namespace {

std::mutex logMutex;  // guards logLines
std::vector<std::string> logLines;

class RecordingFrontend final : public Frontend {
 public:
  void Start() override { FrontendLog::Put("start"); }
  void Stop() override { FrontendLog::Put("stop"); }
  void Announce(ServerService& service, std::vector<std::string> uris) override {
    FrontendLog::Put("announce " + service.GetName() + (uris.empty() ? "" : " at " + uris.front()));
  }
  void Withdraw(ServerService& service) override { FrontendLog::Put("withdraw " + service.GetName()); }
};

}  // namespace

ara::rest::Uri UriOf(const std::string& text) {
  return ara::rest::Uri::Builder{text, ara::rest::GetDefaultAllocator()}.ToUri();
}

ara::rest::Pointer<ogm::Object> Json(const std::string& text) {
  return ara::rest::serialize::JSONSerializer{}.Deserialize(text);
}

void Thing::Embed(const std::string& property, const std::shared_ptr<Thing>& object) {
  KeepEmbedded(property, object);
  SetFieldValue<ogm::Field, ogm::Object>(property, object->ToOGM());
}

ara::rest::Pointer<ogm::Object> Thing::ToOGM() const {
  auto tree = ServerElement::ToOGM();
  for (const auto& [property, object] : GetEmbedded()) ogm::Get<ogm::Field>(*tree, property).SetValue(object->ToOGM());
  return tree;
}

Things::Things(const std::string& uri, std::string name) : ServerResource{ara::rest::Uuid::MakeV5(uri), UriOf(uri), std::move(name)} {}

std::shared_ptr<ServerElement> Things::MakeElement(const ara::rest::Uuid& uuid, const ara::rest::Uri& uri, std::string name) {
  return ara::rest::MakeSharedPointer<Thing>(uri.ToString(), uuid, std::move(name));
}

void RecordingSink::Added(const std::shared_ptr<ServerResource>&, const std::shared_ptr<ServerElement>&, std::string path,
                          std::shared_ptr<const ogm::Object>, std::string text) {
  Put("added " + path + ' ' + text);
}

void RecordingSink::Changed(const std::shared_ptr<ServerResource>&, const std::shared_ptr<ServerElement>& element) {
  Put("changed " + TextOf(*element));
}

void RecordingSink::Removed(const std::shared_ptr<ServerResource>&, const std::shared_ptr<ServerElement>&, std::string path) {
  Put("removed " + path);
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

std::vector<std::string> FrontendLog::Lines() {
  const std::lock_guard lock{logMutex};
  return logLines;
}

void FrontendLog::Put(std::string line) {
  const std::lock_guard lock{logMutex};
  logLines.push_back(std::move(line));
}

void FrontendLog::Clear() {
  const std::lock_guard lock{logMutex};
  logLines.clear();
}

Tree::Tree()
    : server{ara::rest::MakeSharedPointer<Server>("server", "conf.json")},
      service{ara::rest::MakeSharedPointer<ServerService>(ara::rest::Uuid{}, UriOf("/S"), "S")},
      things{ara::rest::MakeSharedPointer<Things>("/S/things")},
      others{ara::rest::MakeSharedPointer<Things>("/S/others", "others")},
      sink{FrontendLog::sink} {
  for (const auto& resource : {things, others}) {
    service->Add(resource);
    server->Add(service);
  }
  FrontendLog::Clear();
}

std::shared_ptr<Thing> Tree::Make(const std::string& type) const {
  const auto uuid = ara::rest::Uuid::MakeV4();
  auto thing = ara::rest::MakeSharedPointer<Thing>("/S/things/" + uuid.ToString(), uuid, "Thing");
  thing->SetFieldValue<ogm::String>("type", type);
  return thing;
}

std::shared_ptr<Thing> Tree::Add(const std::string& type) const {
  auto thing = Make(type);
  things->Add(thing);
  sink->Take();
  return thing;
}

void Tree::Ask(ServerReply& reply, const std::string& target, Method method, const ogm::Object* body) const {
  auto parsed = ParseTarget(target).value();
  server->Route({method, parsed.path, std::move(parsed.query), body}, reply);
}

std::string Tree::Get(const std::string& target) const {
  ServerReply reply;
  Ask(reply, target);
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

std::string PathOf(const ServerElement& element) {
  return element.GetUri().ToString();
}

std::string TextOf(const BaseXObject& object) {
  return ara::rest::serialize::ToText(*object.ToOGM());
}

}  // namespace zuva::test

namespace zuva {

std::unique_ptr<Frontend> MakeFrontend(Server& tree, const std::string&) {
  test::FrontendLog::sink = std::make_shared<test::RecordingSink>();
  tree.SetChangeSink(test::FrontendLog::sink);
  return std::make_unique<test::RecordingFrontend>();
}

}  // namespace zuva
