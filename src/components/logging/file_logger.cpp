#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>

#include <fcntl.h>
#include <unistd.h>

#include "components/logging/logging.h"

namespace zrl::logging {

namespace {

class FileLogger : public Logger {
 public:
  bool proto(std::string_view line, const std::filesystem::path& file) override {
    // A pipe that somebody put there would wait for its reader.
    const int fd =
        ::open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0644);
    if (fd < 0) return failed(errno);
    const std::string bytes = one_line(line);
    // One write: the system appends it as a whole.
    const ssize_t written = ::write(fd, bytes.data(), bytes.size());
    const int code = written < 0 ? errno : ENOSPC;
    ::close(fd);
    return written == static_cast<ssize_t>(bytes.size()) || failed(code);
  }

  std::string_view problem() const override { return problem_; }

 private:
  static std::string one_line(std::string_view line) {
    std::string bytes(line);
    std::replace_if(bytes.begin(), bytes.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
    return bytes + '\n';
  }

  bool failed(int code) {
    problem_ = std::strerror(code);
    return false;
  }

  std::string problem_;
};

}  // namespace

std::shared_ptr<Logger> make(ConsoleServices&) {
  return std::make_shared<FileLogger>();
}

}  // namespace zrl::logging
