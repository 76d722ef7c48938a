#include "serve/file.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace zuva::serve {
namespace {

constexpr int kFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK;  // a pipe does not hold the thread up
constexpr int kMostTries = 8;

int OpenResolved(const std::string& folder, const std::string& path) {
  std::error_code error;
  const auto place = std::filesystem::canonical(folder + path, error).string();
  if (error || !place.starts_with(folder)) return -1;
  return ::open(place.c_str(), kFlags | O_NOFOLLOW);
}

}  // namespace

File::~File() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

bool File::ReadAt(std::uint64_t place, char* buffer, std::size_t size) const noexcept {
  while (size > 0) {
    const auto got = ::pread(descriptor_, buffer, size, static_cast<off_t>(place));
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return false;
    buffer += got;
    size -= static_cast<std::size_t>(got);
    place += static_cast<std::uint64_t>(got);
  }
  return true;
}

File OpenBelow(const std::string& folder, const std::string& path) {
  const File root{::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)};
  open_how how{};
  how.flags = kFlags;
  how.resolve = RESOLVE_BENEATH | RESOLVE_NO_MAGICLINKS;
  long opened = -1;
  for (int tries = 0; tries < kMostTries && opened < 0; ++tries) {
    opened = ::syscall(SYS_openat2, root.Descriptor(), path.c_str(), &how, sizeof how);
    if (opened < 0 && errno != EAGAIN) break;  // something was renamed on the way: once more
  }
  if (opened < 0 && (errno == ENOSYS || errno == EPERM)) return File{OpenResolved(folder, path)};
  return File{static_cast<int>(opened)};
}

}  // namespace zuva::serve
