#include "tests/unit/rest_serve/served_tree.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace zuva::serve::test {
namespace {

class TestService final : public ServerService {
 public:
  TestService() : ServerService{ara::rest::Uuid{}, UriOf("/S"), "S"} {}
};

class TestServer final : public Server {
 public:
  using Server::Server;
};

}  // namespace

ara::rest::Uri UriOf(const std::string& text) {
  return ara::rest::Uri::Builder{text, ara::rest::GetDefaultAllocator()}.ToUri();
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

Things::Things(const std::string& path) : ServerResource{ara::rest::Uuid::MakeV5(path), UriOf(path), path.substr(path.rfind('/') + 1)} {}

std::shared_ptr<ServerElement> Things::MakeElement(const ara::rest::Uuid& uuid, const ara::rest::Uri& uri, std::string name) {
  return std::make_shared<Thing>(uuid, uri, std::move(name));
}

std::shared_ptr<Thing> Things::MakeThing(const std::string& type) const {
  const auto uuid = ara::rest::Uuid::MakeV4();
  auto thing = std::make_shared<Thing>(uuid, UriOf(GetUri().ToString() + "/" + uuid.ToString()), type);
  thing->Set("type", type);
  return thing;
}

std::shared_ptr<Thing> Things::AddThing(const std::string& type) {
  auto thing = MakeThing(type);
  Add(thing);
  return thing;
}

void Gate::Open() {
  {
    const std::lock_guard lock{mutex_};
    open_ = true;
  }
  changed_.notify_all();
}

void Gate::Pass() {
  std::unique_lock lock{mutex_};
  ++guests_;
  changed_.notify_all();
  changed_.wait_for(lock, test_support::kPatience, [this] { return open_; });
}

bool Gate::WaitForGuests(unsigned count) {
  std::unique_lock lock{mutex_};
  return changed_.wait_for(lock, test_support::kPatience, [&] { return guests_ >= count; });
}

unsigned Gate::Guests() const {
  const std::lock_guard lock{mutex_};
  return guests_;
}

StagingRoot::StagingRoot() {
  std::string place = (std::filesystem::temp_directory_path() / "serveXXXXXX").string();
  if (!mkdtemp(place.data())) throw std::runtime_error{"no directory"};
  path_ = place;
  setenv("ARA_ROOT", place.c_str(), 1);
}

StagingRoot::~StagingRoot() {
  unsetenv("ARA_ROOT");
  std::filesystem::remove_all(path_);
}

void StagingRoot::WriteFile(std::string_view path, std::string_view content) const {
  const std::filesystem::path place = path_.string() + std::string{path};
  std::filesystem::create_directories(place.parent_path());
  std::ofstream{place} << content;
}

TestTree::TestTree(nlohmann::json settings, std::shared_ptr<ChangeSink> sink, const Files& files) {
  for (const auto& [path, content] : files) root.WriteFile(path, content);
  nlohmann::json config{{"listen", {{{"address", "127.0.0.1"}, {"port", 0}}}}};
  config.merge_patch(settings);
  root.Write(config.dump());
  server = std::make_shared<TestServer>("test", StagingRoot::kConfig);
  if (sink) server->SetChangeSink(std::move(sink));
  const auto service = std::make_shared<TestService>();
  things = std::make_shared<Things>("/S/things");
  others = std::make_shared<Things>("/S/others");
  service->Add(things);
  service->Add(others);
  server->Add(service);
}

ServedTree::ServedTree(nlohmann::json settings, const Files& files) : TestTree{std::move(settings), nullptr, files} {
  Restart();
}

void ServedTree::Restart() {
  server->Start(false);
  port = PortOf("127.0.0.1");
}

std::uint16_t ServedTree::PortOf(const std::string& host) const {
  const auto address = "//" + host + ":";
  std::uint16_t latest = 0;
  for (const auto& line : capture.Lines()) {
    const auto at = line.find(address);
    if (line.starts_with("Listening on ") && at != std::string::npos)
      latest = static_cast<std::uint16_t>(std::stoul(line.substr(at + address.size())));
  }
  return latest;
}

std::vector<std::string> Codes(std::string_view answers) {
  constexpr std::string_view kVersion = "HTTP/1.1 ";
  std::vector<std::string> codes;
  for (auto at = answers.find(kVersion); at != std::string_view::npos; at = answers.find(kVersion, at + 1))
    codes.emplace_back(answers.substr(at + kVersion.size(), 3));
  return codes;
}

void ServedTree::Guard(Thing& thing, std::shared_ptr<Gate> gate) {
  thing.SetPreUpdateCallback([gate](auto, const ogm::Object& posted, ServerReply& reply) {
    gate->Pass();
    if (posted.HasField("throw")) throw std::runtime_error{"thrown by the callback"};
    if (!posted.HasField("refuse")) return true;
    reply.SendError("refused", static_cast<unsigned short>(ogm::Get<ogm::Int>(posted, "refuse").GetValue()));
    return false;
  });
}

bool ServedTree::Logged(std::string_view text) const {
  const auto lines = capture.Lines();
  return std::any_of(lines.begin(), lines.end(), [&](const std::string& line) { return line.find(text) != std::string::npos; });
}

}  // namespace zuva::serve::test
