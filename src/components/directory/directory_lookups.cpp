#include <array>
#include <utility>

#include "components/directory/directory.h"
#include "components/directory/directory_connection.h"
#include "components/directory/domain_name.h"
#include "core/contracts/database.h"
#include "core/text/text.h"

namespace zrl::directory {

namespace {

class LdapLookups : public DirectoryLookups {
 public:
  LdapLookups(ConsoleServices& console, const Options& options) : console_(console), options_(options) {}

  std::string RootDomain() override;

 private:
  std::string server() const;

  ConsoleServices& console_;
  Options options_;
};

std::string LdapLookups::server() const {
  const auto database = console_.components().create<Database>();
  ConnectionHandle connection = database->open_database(console_.data_provider());
  return std::string(trim(database->read_string("ldapserver", connection)));
}

// A forest of domains names its root domain; other servers only name the contexts that they hold.
std::string LdapLookups::RootDomain() {
  const std::string server = this->server();
  if (server.empty()) return {};
  const std::vector<const char*> attributes{"rootDomainNamingContext", "defaultNamingContext",
                                            "namingContexts"};
  std::string result;
  DirectoryConnection connection(console_, ServerAddress::parse(server), options_);
  connection.read_root(attributes, [&](const DirectoryEntry& root) {
    for (const char* attribute : attributes) {
      result = domain_of(root.first_value(attribute));
      if (!result.empty()) break;
    }
  });
  return result;
}

}  // namespace

std::shared_ptr<DirectoryLookups> make(ConsoleServices& console, const Options& options) {
  return std::make_shared<LdapLookups>(console, options);
}

}  // namespace zrl::directory
