#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace zrl::sqlite {

// Reads a list file entry by entry, in a fixed amount of memory. Lines end with LF or CRLF; a byte
// order mark, blank lines and blanks around entries are dropped; bytes that are no UTF-8 become
// U+FFFD. A line of more than `longest_line` bytes or with a zero byte raises zrl::Error, because
// such a file is no list.
class ListReader {
 public:
  static constexpr std::size_t longest_line = std::size_t{64} << 10;

  explicit ListReader(const std::filesystem::path& path);
  ListReader(const ListReader&) = delete;
  ListReader& operator=(const ListReader&) = delete;
  ~ListReader();

  // The next entry, valid until the next call; false at the end of the file.
  bool next(std::string_view& entry);
  // Back to the first entry. Raises an error if the file was changed since it was opened.
  void rewind();

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
  std::uint64_t line_ = 0;
  std::string repaired_;
};

}  // namespace zrl::sqlite
