#include <cerrno>

#include "components/directory/directory.h"
#include "components/directory/directory_connection.h"
#include "components/directory/mail_address.h"
#include "core/text/error.h"
#include "core/text/text.h"

namespace zrl::directory {

namespace {

// Contacts are people in other organisations. Groups have addresses like users, and count as such.
constexpr const char* with_address = "(|(mail=*)(proxyAddresses=*))";
constexpr const char* address_attributes[] = {"mail", "proxyAddresses"};
const std::vector<const char*> wanted{"objectClass", "mail", "proxyAddresses"};

bool is_contact(const DirectoryEntry& entry) {
  bool result = false;
  entry.each_value("objectClass",
                   [&](std::string_view kind) { result = result || equals_ignoring_case(kind, "contact"); });
  return result;
}

// The addresses that have been read.
class Addresses {
 public:
  Addresses(ConsoleServices& console, const Limits& limits) : console_(console), limits_(limits) {}

  void add(const DirectoryEntry& entry) {
    if (is_contact(entry)) return;
    for (const char* attribute : address_attributes) {
      entry.each_value(attribute, [&](std::string_view value) { add(address_in(value)); });
    }
    console_.show_progress({"read users of the directory", ++entries_, 0});
  }

  StringList take() { return std::move(addresses_); }

 private:
  void add(const std::string& address) {
    if (address.empty()) return;
    bytes_ += address.size();
    if (addresses_.size() >= limits_.addresses || bytes_ > limits_.address_bytes) {
      throw Error(EFBIG, "the directory has too many addresses");
    }
    addresses_.push_back(address);
  }

  ConsoleServices& console_;
  const Limits& limits_;
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

class LdapUsers : public DirectoryUsers {
 public:
  LdapUsers(ConsoleServices& console, const Options& options) : console_(console), options_(options) {}

  StringList addresses(std::string_view server) override {
    const ServerAddress address = ServerAddress::parse(server);
    DirectoryConnection connection(console_, address, options_);
    Addresses found(console_, options_.limits);
    for (const std::string& base :
         address.base.empty() ? bases(connection) : std::vector<std::string>{address.base}) {
      connection.search(base, with_address, wanted, [&](const DirectoryEntry& entry) { found.add(entry); });
    }
    return found.take();
  }

 private:
  ConsoleServices& console_;
  Options options_;
};

}  // namespace

std::shared_ptr<DirectoryUsers> make_users(ConsoleServices& console, const Options& options) {
  return std::make_shared<LdapUsers>(console, options);
}

}  // namespace zrl::directory
