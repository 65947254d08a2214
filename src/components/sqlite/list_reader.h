#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "components/sqlite/list_line.h"

namespace zrl::sqlite {

// Reads a list file entry by entry, in a fixed amount of memory. Lines end with LF or CRLF; a byte
// order mark, blank lines, comments and blanks around entries are dropped; bytes that are no UTF-8 become
// U+FFFD. A line of more than `longest_list_line` bytes or with a zero byte raises zrl::Error, because
// such a file is no list.
class ListReader {
 public:
  ListReader(const std::filesystem::path& path, ListKind kind);
  ListReader(const ListReader&) = delete;
  ListReader& operator=(const ListReader&) = delete;
  ~ListReader();

  // The next entry, valid until the next call; false at the end of the file.
  bool next(std::string_view& entry);
  // Back to the first entry. Raises an error if the file was changed since it was opened.
  void rewind();

  // A link to the file that is read, whatever its path leads to by now.
  std::filesystem::path opened() const { return "/proc/self/fd/" + std::to_string(fd_); }

  // Lines that were comments, and lines without an entry, since the beginning of the file.
  std::uint64_t comments() const { return comments_; }
  std::uint64_t refused() const { return refused_; }

 private:
  bool next_line(std::string_view& line);
  bool fill();
  [[noreturn]] void refuse(const char* why) const;
  std::string fingerprint() const;

  std::filesystem::path path_;
  int fd_;
  std::string fingerprint_;
  std::vector<char> buffer_;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  std::uint64_t line_number_ = 0;
  std::uint64_t comments_ = 0;
  std::uint64_t refused_ = 0;
  ListKind kind_;
  ListLine line_;
  std::string repaired_;
};

}  // namespace zrl::sqlite
