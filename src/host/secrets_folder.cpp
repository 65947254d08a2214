#include "host/secrets_folder.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/contracts/console_folder.h"
#include "core/text/files.h"

namespace zrl {

namespace {

namespace fs = std::filesystem;

constexpr mode_t of_others = S_IRWXO;
constexpr mode_t of_group_and_others = S_IRWXG | S_IRWXO;
constexpr mode_t permissions = 07777;

class OpenFile {
 public:
  OpenFile(int folder, const char* name, int flags)
      : file_(::openat(folder, name, flags | O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK)) {}
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile() {
    if (file_ >= 0) ::close(file_);
  }

  explicit operator bool() const { return file_ >= 0; }
  int get() const { return file_; }
  struct stat state() const {
    struct stat state{};
    if (::fstat(file_, &state) != 0) throw std::runtime_error(std::strerror(errno));
    return state;
  }

 private:
  int file_;
};

[[noreturn]] void refuse(const fs::path& path, const std::string& why) {
  throw std::runtime_error(path.string() + " " + why);
}

std::string owner_text(const struct stat& state) {
  return "belongs to the account number " + std::to_string(state.st_uid);
}

std::string octal(mode_t mode) {
  char text[16];
  std::snprintf(text, sizeof text, "%04o", mode & permissions);
  return text;
}

void tighten(const fs::path& path, const OpenFile& folder) {
  const struct stat state = folder.state();
  if (state.st_uid != ::geteuid() && state.st_uid != 0) {
    refuse(path, owner_text(state) +
                     ", who could replace the console's accounts: run the console under that "
                     "account, or make the folder its own (chown)");
  }
  const mode_t held = state.st_mode & permissions;
  mode_t wanted = held & ~of_others;
  if ((wanted & S_IWGRP) != 0) wanted |= S_ISVTX;
  if (wanted == held || ::fchmod(folder.get(), wanted) == 0) return;
  refuse(path, "has the mode " + octal(held) +
                   ", with which others could replace the console's accounts, and it cannot be changed (" +
                   std::strerror(errno) + "): chmod " + octal(wanted));
}

void check_secrets(const fs::path& path, const OpenFile& secrets) {
  if (!secrets) {
    const std::string reason = errno == ELOOP || errno == ENOTDIR ? "is no folder" : std::strerror(errno);
    refuse(path, "cannot be used for the console's secrets: " + reason);
  }
  const struct stat state = secrets.state();
  if (state.st_uid != ::geteuid()) {
    refuse(path, owner_text(state) + " and not to the console's: find out who made it, and remove it");
  }
  if ((state.st_mode & of_group_and_others) != 0) {
    refuse(path, "is open to others (mode " + octal(state.st_mode) +
                     "): find out why, make sure that the accounts in it are yours, and chmod 0700");
  }
}

// Empty if the file is not there or has been moved, else why it was left.
std::string move_over(const OpenFile& folder, const fs::path& path, const OpenFile& secrets) {
  const std::string name = path.filename().string();
  const OpenFile file(folder.get(), name.c_str(), 0);
  if (!file) return errno == ENOENT ? "" : path.string() + " is not used: " + std::strerror(errno);
  const struct stat state = file.state();
  if (state.st_uid != ::geteuid() || !S_ISREG(state.st_mode) || state.st_nlink != 1) {
    return path.string() + " is not used, because somebody else may have put it there";
  }
  if ((state.st_mode & of_group_and_others) != 0) {
    return path.string() + " is not used, because it is open to others (mode " + octal(state.st_mode) +
           "): if it is the console's, chmod 0600 and start again";
  }
  if (::renameat2(folder.get(), name.c_str(), secrets.get(), name.c_str(), RENAME_NOREPLACE) == 0) return {};
  return path.string() + " is not used: " + std::strerror(errno);
}

}  // namespace

bool is_our_folder(const fs::path& folder) {
  struct stat state{};
  return ::stat(folder.c_str(), &state) == 0 && state.st_uid == ::geteuid();
}

std::vector<std::string> secure_folder(const fs::path& folder) {
  // The folder itself may be named by a symbolic link.
  const fs::path real = fs::canonical(folder);
  const OpenFile open(AT_FDCWD, real.c_str(), O_DIRECTORY);
  if (!open) refuse(folder, std::string("cannot be used: ") + std::strerror(errno));
  tighten(folder, open);

  const fs::path path = console_folder::secrets(folder);
  const std::string name = path.filename().string();
  if (::mkdirat(open.get(), name.c_str(), S_IRWXU) != 0 && errno != EEXIST) {
    refuse(path, std::string("cannot be made: ") + std::strerror(errno));
  }
  const OpenFile secrets(open.get(), name.c_str(), O_DIRECTORY);
  check_secrets(path, secrets);

  std::vector<std::string> warnings;
  for (const char* old : {"accounts.json", "audit.log"}) {
    std::string why = move_over(open, folder / old, secrets);
    if (!why.empty()) warnings.push_back(std::move(why));
  }
  flush_folder(path);
  flush_folder(folder);
  return warnings;
}

}  // namespace zrl
