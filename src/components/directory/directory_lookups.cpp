#include <array>
#include <functional>
#include <utility>

#include "components/directory/directory_components.h"
#include "components/directory/directory_connection.h"
#include "components/directory/domain_name.h"
#include "core/text/text.h"

namespace zrl {

namespace {

class LdapLookups : public DirectoryLookups {
 public:
  LdapLookups(std::function<std::string()> server, DirectorySettings settings)
      : server_(std::move(server)), settings_(std::move(settings)) {}

  std::string RootDomain() override;

 private:
  std::function<std::string()> server_;
  DirectorySettings settings_;
};

// A forest of domains names its root; other servers have the contexts that they keep.
std::string LdapLookups::RootDomain() {
  const std::string server(trim(server_()));
  if (server.empty()) return {};
  const std::vector<const char*> attributes{"rootDomainNamingContext", "defaultNamingContext",
                                            "namingContexts"};
  std::string result;
  DirectoryConnection connection(ServerAddress::parse(server), settings_);
  connection.read_root(attributes, [&](const DirectoryEntry& root) {
    for (const char* attribute : attributes) {
      result = domain_of(root.first_value(attribute));
      if (!result.empty()) break;
    }
  });
  return result;
}

}  // namespace

std::shared_ptr<DirectoryLookups> make_directory_lookups(std::function<std::string()> server,
                                                         DirectorySettings settings) {
  return std::make_shared<LdapLookups>(std::move(server), std::move(settings));
}

}  // namespace zrl
