#include <cerrno>

#include "components/directory/directory_components.h"
#include "components/directory/directory_connection.h"
#include "components/directory/mail_address.h"
#include "core/text/error.h"
#include "core/text/text.h"

namespace zrl {

namespace {

// Contacts are people elsewhere. Groups have addresses at which they are reached, like users.
constexpr const char* with_address = "(|(mail=*)(proxyAddresses=*))";
constexpr const char* address_attributes[] = {"mail", "proxyAddresses"};
const std::vector<const char*> wanted{"objectClass", "mail", "proxyAddresses"};

bool is_contact(const DirectoryEntry& entry) {
  bool result = false;
  entry.each_value("objectClass",
                   [&](std::string_view kind) { result = result || equals_ignoring_case(kind, "contact"); });
  return result;
}

class Users {
 public:
  explicit Users(const DirectorySettings& settings) : settings_(settings) {}

  void add(const DirectoryEntry& entry) {
    if (is_contact(entry)) return;
    for (const char* attribute : address_attributes) {
      entry.each_value(attribute, [&](std::string_view value) { add(address_in(value)); });
    }
    if (settings_.report) settings_.report({"read users of the directory", ++entries_, 0});
  }

  StringList take() { return std::move(addresses_); }

 private:
  void add(const std::string& address) {
    if (address.empty()) return;
    bytes_ += address.size();
    if (addresses_.size() >= settings_.limits.addresses || bytes_ > settings_.limits.address_bytes) {
      throw Error(EFBIG, "the directory has too many addresses");
    }
    addresses_.push_back(address);
  }

  const DirectorySettings& settings_;
  StringList addresses_;
  std::size_t bytes_ = 0;
  std::uint64_t entries_ = 0;
};

std::vector<std::string> bases(DirectoryConnection& connection) {
  std::string default_context;
  std::vector<std::string> contexts;
  connection.read_root({"defaultNamingContext", "namingContexts"}, [&](const DirectoryEntry& root) {
    default_context = root.first_value("defaultNamingContext");
    root.each_value("namingContexts", [&](std::string_view value) { contexts.emplace_back(value); });
  });
  if (!default_context.empty()) return {default_context};
  return contexts;
}

}  // namespace

StringList directory_users(std::string_view server, const DirectorySettings& settings) {
  const ServerAddress address = ServerAddress::parse(server);
  DirectoryConnection connection(address, settings);
  Users users(settings);
  for (const std::string& base :
       address.base.empty() ? bases(connection) : std::vector<std::string>{address.base}) {
    connection.search(base, with_address, wanted, [&](const DirectoryEntry& entry) { users.add(entry); });
  }
  return users.take();
}

}  // namespace zrl
