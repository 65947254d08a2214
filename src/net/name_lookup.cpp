#include "net/name_lookup.h"

#include "core/text/error.h"
#include "core/text/text.h"
#include "net/machine_sockets.h"
#include "net/resolver.h"

namespace zrl {

namespace {

class MachineNameLookup final : public NameLookup {
 public:
  explicit MachineNameLookup(ConsoleServices& services)
      : resolver_({.timeout_setting = [&services] { return services.setting("DNSTimeout"); },
                   .wait = [&services](std::chrono::milliseconds time) { services.wait(time); }}) {}

  StringList mail_exchangers(std::string_view domain) override {
    if (resolver_.lookup_mx(domain).empty()) throw Error(resolver_.last_dns_error(), resolver_.problem());
    StringList exchangers;
    for (const MailExchanger& found : resolver_.mx_list()) exchangers.push_back(found.exchange);
    return exchangers;
  }

  std::string host_address(std::string_view host) override {
    MachineSockets sockets(resolver_);
    std::string problem;
    std::string address = zrl::host_address(sockets, host, problem);
    if (address.empty())
      throw Error(sockets.last_error(), std::string(trim(problem)) + " " + sockets.problem());
    return address;
  }

  std::vector<std::string> servers() override {
    std::vector<std::string> texts;
    for (const DnsServer& server : ready().dns_servers()) texts.push_back(server.text());
    return texts;
  }

  std::chrono::milliseconds time_out() override { return ready().dns_timeout(); }

  bool asks_only_servers() const override { return hosts_file_path().empty(); }

 private:
  Resolver& ready() {
    if (resolver_.dns_servers().empty()) resolver_.discover_dns_servers();
    return resolver_;
  }

  Resolver resolver_;
};

}  // namespace

std::shared_ptr<NameLookup> make_name_lookup(ConsoleServices& services) {
  return std::make_shared<MachineNameLookup>(services);
}

}  // namespace zrl
