#include "host/web/confined_program.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <utility>

#include <fcntl.h>
#include <linux/audit.h>
#include <linux/close_range.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "core/text/error.h"
#include "core/text/paths.h"
#include "core/text/text.h"
#include "host/program_starter.h"

namespace zrl::web {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view default_path = "/usr/local/bin:/usr/bin:/bin";
constexpr char telnet_escape = '\x1d';

struct Limit {
  decltype(RLIMIT_CORE) resource;
  rlim_t most;
};
constexpr Limit limits_of_all[] = {{RLIMIT_CORE, 0},
                                   {RLIMIT_NOFILE, 256},
                                   {RLIMIT_AS, rlim_t{4} << 30},
                                   {RLIMIT_FSIZE, rlim_t{1} << 30},
                                   {RLIMIT_CPU, 3600}};
// The number of processes is that of the account, and does not bind root.
constexpr Limit limits_of_alone[] = {{RLIMIT_FSIZE, 0}, {RLIMIT_NPROC, 0}};

#if defined(__x86_64__)
constexpr std::uint32_t architecture = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__)
constexpr std::uint32_t architecture = AUDIT_ARCH_AARCH64;
#elif defined(__riscv) && __riscv_xlen == 64
constexpr std::uint32_t architecture = AUDIT_ARCH_RISCV64;
#else
#error "The numbers of this architecture's system calls are not known."
#endif

// A filter of system calls: no new process, and no other program than the one whose path lies at `path`,
// which after the start is an address of another program's.
class NoOtherProgram {
 public:
  explicit NoOtherProgram(const char* path) {
    const auto address = reinterpret_cast<std::uintptr_t>(path);
    load(offsetof(seccomp_data, arch));
    unless(architecture, kill);
    load(offsetof(seccomp_data, nr));
#ifdef __x86_64__
    // The second numbering of x86-64.
    add(BPF_JUMP(BPF_JMP | BPF_JGE | BPF_K, x32_bit, 0, 1));
    add(BPF_STMT(BPF_RET | BPF_K, deny));
    refuse(SYS_fork);
    refuse(SYS_vfork);
#endif
    refuse(SYS_execveat);
    // Its flags are in memory, where no filter sees them; C libraries fall back to clone.
    add(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_clone3, 0, 1));
    add(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOSYS));
    // Threads may be.
    add(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_clone, 0, 4));
    load(low_half_of(0));
    add(BPF_JUMP(BPF_JMP | BPF_JSET | BPF_K, CLONE_THREAD, 0, 1));
    add(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    add(BPF_STMT(BPF_RET | BPF_K, deny));
    add(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_execve, 0, 6));
    load(low_half_of(0));
    unless(static_cast<std::uint32_t>(address), deny);
    load(low_half_of(0) + sizeof(std::uint32_t));
    unless(static_cast<std::uint32_t>(std::uint64_t{address} >> 32), deny);
    add(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
  }

  // In the new process. False: errno says why not.
  bool install() {
    const sock_fprog program{static_cast<unsigned short>(size_), code_.data()};
    return ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
  }

 private:
  static constexpr std::uint32_t deny = SECCOMP_RET_ERRNO | EPERM;
  static constexpr std::uint32_t kill = SECCOMP_RET_KILL_PROCESS;
  [[maybe_unused]] static constexpr std::uint32_t x32_bit = 0x40000000;

  static constexpr std::uint32_t low_half_of(std::size_t argument) {
    return static_cast<std::uint32_t>(offsetof(seccomp_data, args) + argument * sizeof(std::uint64_t));
  }
  void add(const sock_filter& instruction) { code_.at(size_++) = instruction; }
  void load(std::size_t offset) {
    add(BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<std::uint32_t>(offset)));
  }
  void unless(std::uint32_t value, std::uint32_t otherwise) {
    add(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, value, 1, 0));
    add(BPF_STMT(BPF_RET | BPF_K, otherwise));
  }
  void refuse(std::uint32_t call) {
    add(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call, 0, 1));
    add(BPF_STMT(BPF_RET | BPF_K, deny));
  }

  std::array<sock_filter, 40> code_{};
  std::size_t size_ = 0;
};

std::string environment(const char* name, std::string_view otherwise) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : std::string(otherwise);
}

// Where the program is; its bare name if it is nowhere. Relative folders in PATH are passed over.
std::string find_program(const std::string& name) {
  if (name.find('/') != std::string::npos) return name;
  const std::string path = environment("PATH", default_path);
  for (std::string_view rest = path; !rest.empty();) {
    const std::size_t end = std::min(rest.find(':'), rest.size());
    const std::string_view folder = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (!folder.starts_with('/')) continue;
    std::string found = std::string(folder) + "/" + name;
    std::error_code failure;
    if (fs::is_regular_file(found, failure) && ::access(found.c_str(), X_OK) == 0) return found;
  }
  return name;
}

std::vector<char*> pointers_to(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

// All that the new process needs. It is a copy of one thread of many, where no memory can be allocated.
struct Prepared {
  std::string path;
  std::string folder;
  const char* terminal = nullptr;
  char** words = nullptr;
  char** environment = nullptr;
  NoOtherProgram* filter = nullptr;  // of one that runs alone
  pid_t parent = 0;
};

bool limit(const Limit& to) {
  rlimit held{};
  if (::getrlimit(to.resource, &held) != 0) return false;
  const rlim_t most = std::min(to.most, held.rlim_max);
  const rlimit wanted{most, most};
  return ::setrlimit(to.resource, &wanted) == 0;
}

void reset_signals() {
  for (int signal = 1; signal < NSIG; ++signal) ::signal(signal, SIG_DFL);
  sigset_t none;
  ::sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

// Returns only if something failed; errno says what.
void become(const Prepared& prepared) {
  reset_signals();
  if (::setsid() < 0) return;
  // The leader of a session that opens a terminal gets it as its controlling one.
  const int terminal = ::open(prepared.terminal, O_RDWR);
  if (terminal < 0 || ::dup2(terminal, STDIN_FILENO) < 0 || ::dup2(terminal, STDOUT_FILENO) < 0 ||
      ::dup2(terminal, STDERR_FILENO) < 0 ||
      ::close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC) != 0) {
    return;
  }
  ::umask(077);
  if (!prepared.folder.empty() && ::chdir(prepared.folder.c_str()) != 0) return;
  if (::prctl(PR_SET_PDEATHSIG, SIGKILL) != 0 || ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) return;
  if (::getppid() != prepared.parent) ::_exit(1);
  for (const Limit& each : limits_of_all) {
    if (!limit(each)) return;
  }
  if (prepared.filter != nullptr) {
    for (const Limit& each : limits_of_alone) {
      if (!limit(each)) return;
    }
    if (!prepared.filter->install()) return;
  }
  ::execve(prepared.path.c_str(), prepared.words, prepared.environment);
}

}  // namespace

Confinement confinement_of(const ProgramStart& program) {
  if (fs::path(lower(program_of(program.program))).filename() != "telnet") return {};
  return {.options = {"-E"}, .alone = true, .withheld = {telnet_escape}};
}

std::vector<std::string> clean_environment() {
  return {"TERM=xterm-256color", "PATH=" + environment("PATH", default_path),
          "LANG=" + environment("LANG", "C.UTF-8")};
}

pid_t start_confined(const ProgramStart& program, const std::string& terminal) {
  const Confinement confinement = confinement_of(program);
  const std::string name = program_of(program.program);
  std::vector<std::string> words{name};
  words.insert(words.end(), confinement.options.begin(), confinement.options.end());
  words.insert(words.end(), program.operands.begin(), program.operands.end());
  std::vector<std::string> variables = clean_environment();
  const std::vector<char*> arguments = pointers_to(words);
  const std::vector<char*> surroundings = pointers_to(variables);

  Prepared prepared;
  prepared.path = find_program(name);
  if (!program.folder.empty()) prepared.folder = to_file_path(program.folder);
  prepared.terminal = terminal.c_str();
  prepared.words = const_cast<char**>(arguments.data());
  prepared.environment = const_cast<char**>(surroundings.data());
  prepared.parent = ::getpid();
  NoOtherProgram filter(prepared.path.c_str());
  if (confinement.alone) prepared.filter = &filter;

  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) throw Error(errno, name + ": " + std::strerror(errno));
  const pid_t child = ::fork();
  int failure = child < 0 ? errno : 0;
  if (child == 0) {
    // The end of the pipe may be one of the three that become the terminal.
    const int told = ::fcntl(ends[1], F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    become(prepared);
    failure = errno;
    (void)!::write(told, &failure, sizeof failure);
    ::_exit(127);
  }
  ::close(ends[1]);
  // Nothing comes if the program has been started.
  while (child > 0 && ::read(ends[0], &failure, sizeof failure) < 0 && errno == EINTR) {
  }
  ::close(ends[0]);
  if (failure == 0) return child;
  if (child > 0) ::waitpid(child, nullptr, 0);
  throw Error(failure, name + ": " + std::strerror(failure));
}

}  // namespace zrl::web
