#include "host/web/audit_file.h"

#include <cerrno>
#include <cstring>
#include <ctime>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/text/files.h"
#include "host/web/audit.h"

namespace zrl::web {

namespace {

namespace fs = std::filesystem;

// What an action may be recorded with, and its sign-in before it.
constexpr off_t reserve = 256 << 10;
// So often another process may turn the file over while we wait for it.
constexpr int most_tries = 10;

}  // namespace

// The file under its present name, locked against others that append or turn it over.
class AuditFile::Locked {
 public:
  explicit Locked(const fs::path& path) {
    for (int i = 0; i < most_tries; ++i) {
      file_ = ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600);
      if (file_ < 0) return;
      ::flock(file_, LOCK_EX);
      struct stat named{};
      if (::fstat(file_, &state_) == 0 && S_ISREG(state_.st_mode) && ::stat(path.c_str(), &named) == 0 &&
          named.st_ino == state_.st_ino && named.st_dev == state_.st_dev) {
        return;
      }
      close();
      errno = EBUSY;
    }
  }
  Locked(const Locked&) = delete;
  Locked& operator=(const Locked&) = delete;
  ~Locked() { close(); }

  explicit operator bool() const { return file_ >= 0; }
  int get() const { return file_; }
  std::uintmax_t size() const { return static_cast<std::uintmax_t>(state_.st_size); }

 private:
  void close() {
    if (file_ >= 0) ::close(file_);
    file_ = -1;
  }

  int file_ = -1;
  struct stat state_{};
};

AuditFile::AuditFile(fs::path path, IfUnwritable if_unwritable, std::function<void(std::string_view)> notify,
                     const Limits& limits)
    : path_(std::move(path)), if_unwritable_(if_unwritable), notify_(std::move(notify)), limits_(limits) {}

bool AuditFile::append(std::string_view lines) {
  const std::scoped_lock lock(mutex_);
  std::string all(line_is_torn_ ? "\n" : "");
  if (lost_ > 0) {
    all += audit_time_text(std::time(nullptr)) + "\t-\t\t-\t-\t" + std::to_string(lost_) +
           " times, lines could not be written\n";
  }
  all += lines;
  const bool done = write(all, limits_.kept > 0);
  lost_ = done ? 0 : lost_ + 1;
  return done;
}

bool AuditFile::write(std::string_view lines, bool may_turn_over) {
  {
    const Locked file(path_);
    if (!file) {
      report(false, errno);
      return false;
    }
    if (!may_turn_over || file.size() == 0 || file.size() + lines.size() <= limits_.bytes) {
      const std::size_t done = write_all(file.get(), lines);
      const int failure = errno;
      if (done > 0) line_is_torn_ = lines[done - 1] != '\n';
      report(done == lines.size(), failure);
      return done == lines.size();
    }
    turn_over();
  }
  return write(lines, false);
}

void AuditFile::turn_over() const {
  const auto numbered = [this](int number) {
    return number == 0 ? path_ : fs::path(path_.string() + "." + std::to_string(number));
  };
  for (int number = limits_.kept; number > 0; --number) {
    std::error_code missing;
    fs::rename(numbered(number - 1), numbered(number), missing);
  }
}

bool AuditFile::permits_actions() {
  if (if_unwritable_ == IfUnwritable::carry_on) return true;
  const std::scoped_lock lock(mutex_);
  const Locked file(path_);
  int failure = file ? 0 : errno;
  // Blocks beyond the end are the next lines'. Not every file system can do that.
  if (file && ::fallocate(file.get(), FALLOC_FL_KEEP_SIZE, static_cast<off_t>(file.size()), reserve) != 0 &&
      errno != EOPNOTSUPP && errno != ENOSYS) {
    failure = errno;
  }
  report(failure == 0, failure);
  return failure == 0;
}

void AuditFile::report(bool works, int failure) {
  if (works == works_) return;
  works_ = works;
  if (!notify_) return;
  notify_(works ? path_.string() + " can be written again"
                : path_.string() + " cannot be written (" + std::strerror(failure) + "): " +
                      (if_unwritable_ == IfUnwritable::refuse ? "actions are refused"
                                                              : "actions are not recorded"));
}

}  // namespace zrl::web
