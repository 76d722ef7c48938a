#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

namespace zuva::serve {

/// An open file, or none. Owns its descriptor. One thread at a time.
class File {
 public:
  File() = default;
  explicit File(int descriptor) noexcept : descriptor_{descriptor} {}
  ~File();
  File(File&& other) noexcept : descriptor_{std::exchange(other.descriptor_, -1)} {}
  File& operator=(File&&) = delete;
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  explicit operator bool() const noexcept { return descriptor_ >= 0; }
  int Descriptor() const noexcept { return descriptor_; }
  /// Fills the buffer from this place on. False if the file ends before, or cannot be read. Blocks for the disk.
  bool ReadAt(std::uint64_t place, char* buffer, std::size_t size) const noexcept;

 private:
  int descriptor_ = -1;
};

/// Opens a file below a folder for reading, by a path relative to it. Symbolic links count as long as they stay below the folder, whatever
/// is exchanged on the disk meanwhile; an absolute link leads out. Null if there is none.
///
/// Where the system does not know, or does not allow, the call that does this in one step, links are resolved first and the file is opened
/// then, which leaves a moment between the two; absolute links that come back are followed there. `folder` is canonical and ends with a
/// slash.
File OpenBelow(const std::string& folder, const std::string& path);

}  // namespace zuva::serve
