#pragma once

#include <filesystem>

#include "net/ip_utilities.h"
#include "net/resolver.h"

namespace zrl {

// Names and sockets of this machine. A name is looked for in the hosts file and then asked of the
// resolver, whose waiting serves the event loop. "localhost" is always 127.0.0.1 (RFC 6761). The
// numbers of errors are those of netdb.h: 1 no such name, 2 no answer in time, 3 the look-up itself
// failed, 4 no address of this kind.
class MachineSockets : public SocketPlatform {
 public:
  explicit MachineSockets(Resolver& resolver, std::filesystem::path hosts_file = hosts_file_path())
      : resolver_(resolver), hosts_file_(std::move(hosts_file)) {}

  std::optional<StartUp> start_up(int major_version, int minor_version) override;
  bool clean_up() override { return true; }
  int last_error() const override { return last_error_; }
  // Why host_by_name() found nothing, in words for people.
  const std::string& problem() const { return problem_; }
  std::optional<std::string> own_host_name() override;
  std::optional<std::vector<std::uint8_t>> host_by_name(const std::string& name) override;

 private:
  Resolver& resolver_;
  std::filesystem::path hosts_file_;
  int last_error_ = 0;
  std::string problem_;
};

// The first IPv4 address that a hosts file, see hosts(5), gives the name, dotted; or empty.
std::string find_in_hosts_file(const std::filesystem::path& path, std::string_view name);

}  // namespace zrl
