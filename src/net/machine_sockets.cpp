#include "net/machine_sockets.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <fstream>
#include <sstream>

#include <arpa/inet.h>
#include <netdb.h>
#include <sys/resource.h>
#include <unistd.h>

#include "core/text/text.h"

namespace zrl {

namespace {

constexpr std::size_t host_name_size = 256;

int error_number_of(Resolver::Outcome outcome) {
  switch (outcome) {
    case Resolver::Outcome::not_asked:
    case Resolver::Outcome::no_such_name:
      return HOST_NOT_FOUND;
    case Resolver::Outcome::timed_out:
      return TRY_AGAIN;
    case Resolver::Outcome::no_records:
      return NO_DATA;
    default:
      return NO_RECOVERY;
  }
}

std::vector<std::uint8_t> address_bytes(const std::string& dotted) {
  std::vector<std::uint8_t> bytes(4);
  if (::inet_pton(AF_INET, dotted.c_str(), bytes.data()) != 1) return {};
  return bytes;
}

std::string_view without_last_dot(std::string_view name) {
  return name.substr(0, name.size() - (name.ends_with('.') ? 1 : 0));
}

}  // namespace

// The system needs no start; what limits sockets here is the number of open files.
std::optional<SocketPlatform::StartUp> MachineSockets::start_up(int major_version, int minor_version) {
  rlimit files{};
  if (::getrlimit(RLIMIT_NOFILE, &files) != 0) return std::nullopt;
  return StartUp{major_version, minor_version, static_cast<long>(std::min<rlim_t>(files.rlim_cur, LONG_MAX))};
}

std::optional<std::string> MachineSockets::own_host_name() {
  std::array<char, host_name_size> name{};
  if (::gethostname(name.data(), name.size() - 1) != 0) {
    last_error_ = errno;
    return std::nullopt;
  }
  return std::string(text_up_to_zero({name.data(), name.size()}));
}

std::optional<std::vector<std::uint8_t>> MachineSockets::host_by_name(const std::string& name) {
  if (equals_ignoring_case(without_last_dot(name), "localhost"))
    return std::vector<std::uint8_t>{127, 0, 0, 1};
  if (!hosts_file_.empty()) {
    const std::string found = find_in_hosts_file(hosts_file_, name);
    if (!found.empty()) return address_bytes(found);
  }
  const std::vector<std::string> found = resolver_.lookup_a(name);
  if (!found.empty()) return address_bytes(found.front());
  last_error_ = error_number_of(resolver_.outcome());
  problem_ = resolver_.problem();
  return std::nullopt;
}

std::string find_in_hosts_file(const std::filesystem::path& path, std::string_view name) {
  name = without_last_dot(name);
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    std::istringstream words(line.substr(0, line.find('#')));
    std::string address;
    words >> address;
    if (address_bytes(address).empty()) continue;
    for (std::string word; words >> word;) {
      if (equals_ignoring_case(without_last_dot(word), name)) return address;
    }
  }
  return {};
}

}  // namespace zrl
