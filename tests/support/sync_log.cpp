#include "support/sync_log.h"

#include <cerrno>
#include <filesystem>
#include <mutex>
#include <utility>

#include <sys/syscall.h>
#include <unistd.h>

namespace zrl::test {

namespace {

std::mutex mutex;
std::vector<std::string> names;
bool failing = false;

int sync(long call, int file) {
  std::error_code ignored;
  const auto path = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(file), ignored);
  {
    const std::scoped_lock lock(mutex);
    names.push_back(path.filename());
    if (std::exchange(failing, false)) {
      errno = EIO;
      return -1;
    }
  }
  return static_cast<int>(::syscall(call, file));
}

}  // namespace

std::vector<std::string> take_syncs() {
  const std::scoped_lock lock(mutex);
  return std::exchange(names, {});
}

void fail_next_sync() {
  const std::scoped_lock lock(mutex);
  failing = true;
}

}  // namespace zrl::test

extern "C" int fsync(int file) {
  return zrl::test::sync(SYS_fsync, file);
}

extern "C" int fdatasync(int file) {
  return zrl::test::sync(SYS_fdatasync, file);
}
