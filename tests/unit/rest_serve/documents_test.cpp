#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <string>
#include <thread>

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

#include <gtest/gtest.h>

#include "serve/config.h"
#include "serve/documents.h"
#include "tests/support/raw_socket.h"
#include "tests/unit/rest_serve/served_tree.h"

namespace zuva::serve {
namespace {

const test::Files kFiles{{"/www/index.html", "<p>services</p>"},
                         {"/www/app/main.js", "run()"},
                         {"/www/S", "shadowed"},
                         {"/www/a b.TXT", "blank"},
                         {"/www/.secret", "hidden"},
                         {"/www/data.bin", std::string("\0\1", 2)},
                         {"/outside.txt", "not yours"},
                         {"/www2/near.txt", "not yours"}};

class DocumentRoot : public testing::Test {
 protected:
  test_support::HttpResponse Get(std::string_view target, const test_support::Headers& headers = {}) {
    return tree.Http().Get(target, headers);
  }

  test::ServedTree tree{{{"documentRoot", "/www"}}, kFiles};
};

TEST_F(DocumentRoot, ServesItsFilesWithTheirTypes) {
  const auto script = Get("/app/main.js");
  EXPECT_EQ(script.status, 200U);
  EXPECT_EQ(script.body, "run()");
  EXPECT_EQ(script.headers.at("content-type"), "text/javascript; charset=utf-8");
  EXPECT_EQ(script.headers.at("x-content-type-options"), "nosniff");
  EXPECT_EQ(Get("/app/main.js", {{"If-None-Match", script.headers.at("etag")}}).status, 304U);
  EXPECT_EQ(Get("/a%20b.TXT?query=1").headers.at("content-type"), "text/plain; charset=utf-8");
  EXPECT_EQ(Get("/data.bin").headers.at("content-type"), "application/octet-stream");
  EXPECT_EQ(Get("/data.bin").body, std::string("\0\1", 2));
  const auto head = tree.Http().Request("HEAD", "/app/main.js");
  EXPECT_EQ(head.headers.at("content-length"), "5");
  EXPECT_TRUE(head.body.empty());

  tree.root.WriteFile("/www/app/main.js", "run(2)");
  EXPECT_EQ(Get("/app/main.js").body, "run(2)");
  EXPECT_TRUE(test::WaitFor([&] {  // within one tick of the disk's clock two changes look alike
    tree.root.WriteFile("/www/app/main.js", "nur()");
    return Get("/app/main.js").headers.at("etag") != script.headers.at("etag");
  })) << "of the same length";
}

TEST_F(DocumentRoot, ALongFileComesWholeAndOneThatShrinksEndsTheConnection) {
  std::string content;
  while (content.size() < 300'000) content += std::to_string(content.size());
  tree.root.WriteFile("/www/long.txt", content);
  auto client = tree.Http();
  EXPECT_EQ(client.Get("/long.txt").body, content);
  EXPECT_EQ(client.Get("/app/main.js").body, "run()") << "on the same connection";

  constexpr std::size_t kHuge = 32'000'000;  // no socket's buffers hold it
  std::filesystem::resize_file(tree.root.Path() / "www/long.txt", kHuge);
  test_support::RawSocket socket{tree.port, 65536};
  socket.Send("GET /long.txt HTTP/1.1\r\nHost: localhost\r\n\r\n");
  EXPECT_NE(socket.ReadUntil("\r\n\r\n").find("Content-Length: 32000000\r\n"), std::string::npos);
  std::filesystem::resize_file(tree.root.Path() / "www/long.txt", 400'000);
  EXPECT_LT(socket.ReadToEnd().size(), kHuge);
  EXPECT_TRUE(socket.HasEnded());
}

TEST_F(DocumentRoot, LetsNobodyOut) {
  std::filesystem::create_symlink(tree.root.Path() / "outside.txt", tree.root.Path() / "www/link.txt");
  std::filesystem::create_symlink(tree.root.Path() / "www2", tree.root.Path() / "www/folder");
  std::filesystem::create_symlink(tree.root.Path() / "www/app", tree.root.Path() / "www/absolute");
  std::filesystem::create_symlink("loop.txt", tree.root.Path() / "www/loop.txt");
  std::filesystem::create_symlink("app/../app/main.js", tree.root.Path() / "www/inside.js");
  EXPECT_EQ(Get("/inside.js").status, 200U);
  for (const auto* path : {"/../outside.txt", "/%2e%2e/outside.txt", "/app/../../outside.txt", "/..%2foutside.txt", "/link.txt",
                           "/folder/near.txt", "/.secret", "/app", "/app/", "//app/main.js", "/app//main.js", "/app/main.js/",
                           "/app/main.js%00", "/./index.html", "/../www2/near.txt", "/%2foutside.txt", "/absolute/main.js", "/loop.txt"})
    EXPECT_EQ(Get(path).status, 404U) << path;
  EXPECT_EQ(tree.Http().Get("/%zz").status, 404U);
}

TEST_F(DocumentRoot, YieldsToServices) {
  EXPECT_EQ(Get("/S").headers.at("content-type"), "application/json");
  EXPECT_EQ(Get("/S/main.js").status, 404U);
  EXPECT_EQ(Get("/S/main.js").headers.at("content-type"), "application/problem+json");
}

TEST_F(DocumentRoot, ShowsPeopleThePageAndProgramsTheList) {
  constexpr const char* kBrowser = "text/html,application/xhtml+xml,application/xml;q=0.9,*/*;q=0.8";
  EXPECT_EQ(Get("/", {{"Accept", kBrowser}}).body, "<p>services</p>");
  for (const auto* accept : {"*/*", "application/json", "text/html;q=0.5, application/json", "text/html;q=0"}) {
    EXPECT_TRUE(Get("/", {{"Accept", accept}}).Json().contains("services")) << accept;
  }
  EXPECT_TRUE(Get("/").Json().contains("services"));
  EXPECT_EQ(Get("/", {{"Accept", kBrowser}}).headers.at("vary"), "Accept");
}

TEST_F(DocumentRoot, TakesNoWrites) {
  const auto answer = tree.Http().Post("/app/main.js", "{}");
  EXPECT_EQ(answer.status, 405U);
  EXPECT_EQ(answer.headers.at("allow"), "GET, HEAD");
  EXPECT_EQ(tree.Http().Request("OPTIONS", "/app/main.js").headers.at("allow"), "GET, HEAD");
  EXPECT_EQ(tree.Http().Request("DELETE", "/app/main.js").status, 405U);
}

/// Makes `openat2` fail with this error for the calling thread, as older systems and containers do.
bool ForbidOpenat2(unsigned error) {
  sock_filter program[]{BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
                        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_openat2, 0, 1), BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error),
                        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)};
  const sock_fprog filter{4, program};
  return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

TEST(Documents, AreServedWhereTheSystemCannotOpenThemInOneStep) {
  const test::StagingRoot root;
  for (const auto& [path, content] : kFiles) root.WriteFile(path, content);
  std::filesystem::create_symlink("../outside.txt", root.Path() / "www/link.txt");
  for (const unsigned error : {ENOSYS, EPERM}) {
    std::thread{[&] {
      ASSERT_TRUE(ForbidOpenat2(error));
      const Documents documents{"/www"};
      EXPECT_TRUE(documents.Find("/app/main.js"));
      EXPECT_FALSE(documents.Find("/link.txt"));
    }}.join();
  }
}

TEST(Documents, NeedAFolder) {
  const test::StagingRoot root;
  root.WriteFile("/file", "");
  EXPECT_THROW(Documents{"/none"}, ConfigError);
  EXPECT_THROW(Documents{"/file"}, ConfigError);
}

}  // namespace
}  // namespace zuva::serve
