#include "components/downloader/downloaded_file.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

#include "core/text/error.h"

namespace zrl {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view mark = ".fetching-";
// No update lasts so long.
constexpr std::chrono::hours leftover_age{24};

[[noreturn]] void fail(const fs::path& path) {
  const int code = errno;
  throw Error(code, path.filename().string() + ": " + std::strerror(code));
}

// Several consoles may fetch the same file at the same time.
std::string random_name() {
  std::random_device random;
  char name[17];
  std::snprintf(name, sizeof name, "%08x%08x", random(), random());
  return name;
}

}  // namespace

DownloadedFile::DownloadedFile(fs::path path) : path_(std::move(path)) {}

DownloadedFile::~DownloadedFile() {
  if (fd_ >= 0) ::close(fd_);
  if (!temporary_.empty()) ::unlink(temporary_.c_str());
}

void DownloadedFile::open() {
  if (fd_ >= 0) return;
  fs::path temporary = path_;
  temporary += std::string(mark) + random_name();
  fd_ = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
  if (fd_ < 0) fail(path_);
  temporary_ = std::move(temporary);
}

void DownloadedFile::write(std::string_view bytes) {
  open();
  while (!bytes.empty()) {
    const ssize_t written = ::write(fd_, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) fail(path_);
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

void DownloadedFile::complete() {
  open();  // an empty file
  if (::fsync(fd_) != 0) fail(path_);
  ::close(std::exchange(fd_, -1));
  if (std::rename(temporary_.c_str(), path_.c_str()) != 0) fail(path_);
  temporary_.clear();
}

void DownloadedFile::remove_leftovers(const fs::path& folder) {
  std::error_code ignored;
  const auto oldest = fs::file_time_type::clock::now() - leftover_age;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, ignored)) {
    if (entry.path().filename().string().find(mark) == std::string::npos) continue;
    const fs::file_time_type written = entry.last_write_time(ignored);
    if (!ignored && written < oldest) fs::remove(entry.path(), ignored);
  }
}

}  // namespace zrl
