#include "components/sqlite/list_reader.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/text/error.h"
#include "core/text/files.h"
#include "core/text/utf8.h"

namespace zrl::sqlite {

namespace {

constexpr std::size_t buffer_size = 4 * longest_list_line;

}  // namespace

ListReader::ListReader(const std::filesystem::path& path, ListKind kind)
    : path_(path),
      fd_(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)),
      buffer_(buffer_size),
      kind_(kind) {
  if (fd_ < 0) raise_file_error(path_, errno);
  struct stat status = {};
  if (::fstat(fd_, &status) == 0 && S_ISREG(status.st_mode)) {
    fingerprint_ = fingerprint();
    return;
  }
  ::close(fd_);
  throw Error(EINVAL, path_.string() + ": not a file");
}

ListReader::~ListReader() {
  ::close(fd_);
}

bool ListReader::next(std::string_view& entry) {
  std::string_view line;
  while (!line_.next(entry)) {
    if (!next_line(line)) return false;
    if (std::memchr(line.data(), '\0', line.size()) != nullptr) refuse("holds a zero byte");
    if (!is_valid_utf8(line)) line = repaired_ = valid_utf8(line);
    line_ = ListLine(kind_, line);
    if (line_.content() == ListLine::Content::comment) ++comments_;
    if (line_.content() == ListLine::Content::refused) ++refused_;
  }
  return true;
}

void ListReader::rewind() {
  if (::lseek(fd_, 0, SEEK_SET) < 0) raise_file_error(path_, errno);
  if (fingerprint() != fingerprint_) throw Error(EAGAIN, path_.string() + ": the file is being written");
  begin_ = end_ = 0;
  line_number_ = comments_ = refused_ = 0;
  line_ = {};
}

bool ListReader::next_line(std::string_view& line) {
  std::size_t searched = begin_;
  const char* found = nullptr;
  while (true) {
    found = static_cast<const char*>(std::memchr(buffer_.data() + searched, '\n', end_ - searched));
    if (found != nullptr) break;
    if (end_ - begin_ > longest_list_line + byte_order_mark.size() + 1) {
      ++line_number_;  // its end has not been found, so it is not counted yet
      refuse("is too long");
    }
    const std::size_t held = end_ - begin_;
    if (!fill()) break;
    searched = begin_ + held;
  }
  const std::size_t end = found != nullptr ? static_cast<std::size_t>(found - buffer_.data()) : end_;
  if (found == nullptr && begin_ == end_) return false;
  line = std::string_view(buffer_.data() + begin_, end - begin_);
  begin_ = found != nullptr ? end + 1 : end;
  if (line_number_++ == 0 && line.starts_with(byte_order_mark)) line.remove_prefix(byte_order_mark.size());
  if (line.ends_with('\r')) line.remove_suffix(1);
  if (line.size() > longest_list_line) refuse("is too long");
  return true;
}

// Moves the unread bytes to the front of the buffer and fills the rest; false at the end of the file.
bool ListReader::fill() {
  std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
  end_ -= begin_;
  begin_ = 0;
  ssize_t got = 0;
  do {
    got = ::read(fd_, buffer_.data() + end_, buffer_.size() - end_);
  } while (got < 0 && errno == EINTR);
  if (got < 0) raise_file_error(path_, errno);
  end_ += static_cast<std::size_t>(got);
  return got > 0;
}

void ListReader::refuse(const char* why) const {
  throw Error(EINVAL, path_.string() + ": not a list file, line " + std::to_string(line_number_) + " " + why);
}

std::string ListReader::fingerprint() const {
  struct stat status = {};
  if (::fstat(fd_, &status) != 0) raise_file_error(path_, errno);
  return std::to_string(status.st_size) + "/" + std::to_string(status.st_mtim.tv_sec) + "/" +
         std::to_string(status.st_mtim.tv_nsec);
}

}  // namespace zrl::sqlite
