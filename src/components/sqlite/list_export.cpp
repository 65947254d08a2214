#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "components/sqlite/list_transfer.h"
#include "core/text/error.h"
#include "core/text/paths.h"

namespace zrl {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t buffer_size = std::size_t{256} << 10;
constexpr std::uint64_t report_interval = 32768;

[[noreturn]] void fail(const fs::path& path, int code) {
  throw Error(code, path.string() + ": " + std::strerror(code));
}

// A file that shows up under its name when it is complete, and otherwise leaves no trace.
class NewFile {
 public:
  explicit NewFile(const fs::path& path) : path_(path), temporary_(path) {
    temporary_ += ".new" + std::to_string(::getpid());
    ::unlink(temporary_.c_str());  // of a process that died
    fd_ = ::open(temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (fd_ < 0) fail(path_, errno);
  }
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;
  ~NewFile() {
    ::close(fd_);
    if (!temporary_.empty()) ::unlink(temporary_.c_str());
  }

  void add_line(std::string_view text) {
    if (buffer_.size() + text.size() >= buffer_size) flush();
    const std::size_t begin = buffer_.size();
    buffer_ += text;
    std::replace_if(
        buffer_.begin() + static_cast<std::ptrdiff_t>(begin), buffer_.end(),
        [](char c) { return c == '\n' || c == '\r'; }, ' ');
    buffer_ += '\n';
  }

  // False if the name is taken and must not be.
  bool publish(bool overwrite) {
    flush();
    if (::fsync(fd_) != 0) fail(path_, errno);
    if (!rename(overwrite)) return false;
    temporary_.clear();
    flush_folder(path_.parent_path());
    return true;
  }

 private:
  void flush() {
    std::string_view rest = buffer_;
    while (!rest.empty()) {
      const ssize_t written = ::write(fd_, rest.data(), rest.size());
      if (written < 0 && errno == EINTR) continue;
      if (written < 0) fail(path_, errno);
      rest.remove_prefix(static_cast<std::size_t>(written));
    }
    buffer_.clear();
  }

  bool rename(bool overwrite) const {
    const unsigned flags = overwrite ? 0 : RENAME_NOREPLACE;
    if (::renameat2(AT_FDCWD, temporary_.c_str(), AT_FDCWD, path_.c_str(), flags) == 0) return true;
    if (errno == EEXIST) return false;
    if (errno != EINVAL && errno != ENOSYS) fail(path_, errno);
    // A file system that knows no renaming without replacing.
    if (!overwrite && fs::exists(path_)) return false;
    if (std::rename(temporary_.c_str(), path_.c_str()) != 0) fail(path_, errno);
    return true;
  }

  fs::path path_;
  fs::path temporary_;
  int fd_ = -1;
  std::string buffer_;
};

// An export over the database's own files would destroy what it reads.
void check_target(const fs::path& path, const fs::path& database) {
  const fs::file_status status = fs::symlink_status(path);
  if (fs::exists(status) && !fs::is_regular_file(status) && !fs::is_symlink(status)) {
    throw Error(EEXIST, path.string() + ": not a file");
  }
  for (const char* ending : {"", "-wal", "-shm"}) {
    fs::path own = database;
    own += ending;
    std::error_code ignored;
    if (fs::equivalent(path, own, ignored)) throw Error(EEXIST, path.string() + ": belongs to the database");
  }
}

}  // namespace

bool export_list(const ListTransfer& transfer, const Statement& condition, const fs::path& path,
                 bool overwrite) {
  std::string select =
      "SELECT " + quoted_name(transfer.column.text()) + " FROM " + quoted_name(transfer.table.text());
  if (!condition.empty()) select += " WHERE " + condition.skeleton();
  const Loan rows = transfer.session.statements.prepare(select + " ORDER BY rowid", condition);
  check_target(path, transfer.session.engine.path());
  if (!overwrite && fs::exists(path)) return false;

  NewFile file(path);
  const std::string text = "export " + std::string(transfer.table.text());
  for (std::uint64_t done = 0; rows->step(); ++done) {
    const std::string_view entry = rows->text(0);
    if (!entry.empty()) file.add_line(entry);
    if (transfer.report && done % report_interval == 0) transfer.report({text, done, 0});
  }
  return file.publish(overwrite);
}

}  // namespace zrl
