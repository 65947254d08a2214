#pragma once

#include <filesystem>

#include "net/ip_utilities.h"
#include "net/resolver.h"

namespace zrl {

// Names and sockets of this machine. A name is looked up in the hosts file and then by the resolver, which
// serves the event loop while it waits. "localhost" is always 127.0.0.1 (RFC 6761). The error numbers of
// host_by_name() are those of netdb.h: 1 no such name, 2 no answer in time, 3 the look-up itself failed,
// 4 no address of this kind; that of own_host_name() is an errno. Nothing here raises an error of its own.
class MachineSockets : public SocketPlatform {
 public:
  // The resolver must outlive the object. An empty path means no hosts file.
  explicit MachineSockets(Resolver& resolver, std::filesystem::path hosts_file = hosts_file_path())
      : resolver_(resolver), hosts_file_(std::move(hosts_file)) {}

  std::optional<StartUp> start_up(int major_version, int minor_version) override;
  bool clean_up() override { return true; }
  int last_error() const override { return last_error_; }
  // Why the last host_by_name() that failed found nothing, for people.
  const std::string& problem() const { return problem_; }
  std::optional<std::string> own_host_name() override;
  std::optional<std::vector<std::uint8_t>> host_by_name(const std::string& name) override;

 private:
  Resolver& resolver_;
  std::filesystem::path hosts_file_;
  int last_error_ = 0;
  std::string problem_;
};

// The first IPv4 address of the name in a hosts file, see hosts(5), dotted. Empty if there is none, or if the
// file cannot be read. Case and a dot at the end of a name are ignored.
std::string find_in_hosts_file(const std::filesystem::path& path, std::string_view name);

}  // namespace zrl
