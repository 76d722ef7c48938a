#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "serve/file.h"
#include "zuva/rendered.h"

namespace zuva::serve {

/// A file as an answer: the head, the tag, and in place of the body the open file, which is read while it is sent.
struct Document : Rendered {
  Document(File opened, std::uint64_t bytes) : file{std::move(opened)}, size{bytes} {}

  File file;
  std::uint64_t size;  ///< when it was opened; the head tells it
};

/// The content of a document in pieces, as they are sent. I/O thread only.
class DocumentPieces {
 public:
  static constexpr std::size_t kMostBytes = 65536;

  /// Reads the first piece; null stands for an empty content. Here and below: false if the file gives less than its head has told. Blocks
  /// for the disk.
  bool Begin(std::shared_ptr<const Document> document);
  bool Next();
  bool HasMore() const { return document_ && end_ < document_->size; }
  /// Valid until the next call of the others.
  std::string_view Piece() const { return {piece_.data(), piece_.size()}; }

 private:
  std::shared_ptr<const Document> document_;
  std::vector<char> piece_;
  std::uint64_t end_ = 0;  // of the piece, in the file
};

/// The files below one folder, for paths that no service owns. Looked up at each request. I/O thread only, but for the constructor.
class Documents {
 public:
  /// Throws `ConfigError` if the path, taken below `ARA_ROOT`, is no folder.
  explicit Documents(const std::string& root);

  /// The regular file under this path of a request; nothing if there is none, if a name on the way begins with a dot, or if it lies outside
  /// the folder, links followed. Blocks for the disk.
  std::shared_ptr<const Document> Find(std::string_view requestPath) const;

  /// Whether a client with this `Accept` field would rather read HTML than JSON (RFC 9110 section 12.5.1).
  static bool PrefersHtml(std::string_view accept);

 private:
  static std::string PathOf(std::string_view requestPath);

  std::string root_;  // canonical
};

}  // namespace zuva::serve
