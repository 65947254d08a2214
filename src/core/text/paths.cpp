#include "core/text/paths.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

#include "core/text/error.h"

namespace zrl {

namespace {

[[noreturn]] void fail(const std::filesystem::path& path, int code) {
  throw Error(code, path.string() + ": " + std::strerror(code));
}

class File {
 public:
  File(const std::filesystem::path& path, int flags, unsigned mode = 0)
      : path_(path), fd_(::open(path.c_str(), flags, mode)) {
    if (fd_ < 0) fail(path_, errno);
  }
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  ~File() { ::close(fd_); }

  void write(std::string_view content) {
    while (!content.empty()) {
      const ssize_t written = ::write(fd_, content.data(), content.size());
      if (written < 0 && errno == EINTR) continue;
      if (written < 0) fail(path_, errno);
      content.remove_prefix(static_cast<std::size_t>(written));
    }
  }

  void flush() {
    if (::fsync(fd_) != 0) fail(path_, errno);
  }

  // Appends what comes next to `content`; false at the end.
  bool read(std::string& content) {
    char block[65536];
    ssize_t got = ::read(fd_, block, sizeof block);
    while (got < 0 && errno == EINTR) got = ::read(fd_, block, sizeof block);
    if (got < 0) fail(path_, errno);
    content.append(block, static_cast<std::size_t>(got));
    return got > 0;
  }

 private:
  std::filesystem::path path_;
  int fd_;
};

}  // namespace

std::filesystem::path to_file_path(std::string_view product_path) {
  std::string path(product_path);
  std::replace(path.begin(), path.end(), '\\', '/');
  return path;
}

std::string to_product_path(const std::filesystem::path& path) {
  std::string result = path.string();
  std::replace(result.begin(), result.end(), '/', '\\');
  return result;
}

void replace_file(const std::filesystem::path& path, std::string_view content, unsigned mode) {
  std::filesystem::path temporary = path;
  temporary += ".new" + std::to_string(::getpid());
  ::unlink(temporary.c_str());  // of a process that died
  try {
    File file(temporary, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    file.write(content);
    file.flush();
    if (std::rename(temporary.c_str(), path.c_str()) != 0) fail(path, errno);
  } catch (const Error&) {
    ::unlink(temporary.c_str());
    throw;
  }
  flush_folder(path.parent_path());
}

void flush_folder(const std::filesystem::path& folder) {
  const int fd = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return;
  ::fsync(fd);
  ::close(fd);
}

std::string read_file(const std::filesystem::path& path, std::size_t limit) {
  File file(path, O_RDONLY | O_CLOEXEC);
  std::string content;
  while (file.read(content)) {
    if (content.size() > limit) fail(path, EFBIG);
  }
  return content;
}

}  // namespace zrl
