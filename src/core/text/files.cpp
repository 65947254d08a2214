#include "core/text/files.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <random>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/text/error.h"

namespace zrl {

namespace {

namespace fs = std::filesystem;

// The name is not that of the file, which may be as long as a name can be.
constexpr std::string_view mark = ".new-";
// No file takes so long to write.
constexpr std::chrono::hours leftover_age{24};

// Containers that share a folder may share the numbers of their processes, too.
std::string random_name() {
  std::random_device random;
  std::array<char, 17> name{};
  std::snprintf(name.data(), name.size(), "%08x%08x", random(), random());
  return name.data();
}

}  // namespace

void raise_file_error(const fs::path& path, int code) {
  throw Error(code, path.string() + ": " + std::strerror(code));
}

std::string read_file(const fs::path& path, std::size_t limit) {
  const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (file < 0) raise_file_error(path, errno);
  std::string content;
  std::array<char, 65536> block;
  struct stat state{};
  int failure = ::fstat(file, &state) == 0 ? 0 : errno;
  if (failure == 0 && !S_ISREG(state.st_mode)) failure = EINVAL;
  while (failure == 0) {
    const ssize_t got = ::read(file, block.data(), block.size());
    if (got == 0) break;
    if (got > 0) content.append(block.data(), static_cast<std::size_t>(got));
    if (got < 0 && errno != EINTR) failure = errno;
    if (content.size() > limit) failure = EFBIG;
  }
  ::close(file);
  if (failure != 0) raise_file_error(path, failure);
  return content;
}

void replace_file(const fs::path& path, std::string_view content, unsigned mode) {
  NewFile file(path, mode);
  file.write(content);
  file.publish();
  flush_folder(path.parent_path());
}

void flush_folder(const fs::path& folder) {
  const int file = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (file < 0) return;
  ::fsync(file);
  ::close(file);
}

std::size_t write_all(int file, std::string_view bytes) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t written = ::write(file, bytes.data() + done, bytes.size() - done);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) break;
    done += static_cast<std::size_t>(written);
  }
  return done;
}

NewFile::NewFile(fs::path path, unsigned mode) : path_(std::move(path)) {
  fs::path temporary = path_.parent_path() / (std::string(mark) + random_name());
  file_ = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
  if (file_ < 0) raise_file_error(path_, errno);
  temporary_ = std::move(temporary);
}

NewFile::~NewFile() {
  if (file_ >= 0) ::close(file_);
  if (!temporary_.empty()) ::unlink(temporary_.c_str());
}

void NewFile::write(std::string_view bytes) {
  if (write_all(file_, bytes) < bytes.size()) raise_file_error(path_, errno);
}

bool NewFile::publish(IfTaken if_taken) {
  if (::fsync(file_) != 0) raise_file_error(path_, errno);
  ::close(std::exchange(file_, -1));
  if (!rename(if_taken)) return false;
  temporary_.clear();
  return true;
}

bool NewFile::rename(IfTaken if_taken) const {
  if (if_taken == IfTaken::keep) {
    if (::renameat2(AT_FDCWD, temporary_.c_str(), AT_FDCWD, path_.c_str(), RENAME_NOREPLACE) == 0)
      return true;
    if (errno == EEXIST) return false;
    if (errno != EINVAL && errno != ENOSYS) raise_file_error(path_, errno);
    // A file system that knows no renaming without replacing.
    if (fs::exists(path_)) return false;
  }
  if (std::rename(temporary_.c_str(), path_.c_str()) != 0) raise_file_error(path_, errno);
  return true;
}

void NewFile::remove_leftovers(const fs::path& folder) {
  std::error_code failure;
  const auto oldest = fs::file_time_type::clock::now() - leftover_age;
  for (fs::directory_iterator entry(folder, failure), end; !failure && entry != end;
       entry.increment(failure)) {
    if (!entry->path().filename().string().starts_with(mark)) continue;
    std::error_code ignored;
    const fs::file_time_type written = fs::last_write_time(entry->path(), ignored);
    if (!ignored && written < oldest) fs::remove(entry->path(), ignored);
  }
}

}  // namespace zrl
