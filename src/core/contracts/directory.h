#pragma once

#include <string>
#include <string_view>

#include "core/text/string_list.h"

namespace zrl {

// The directory (LDAP, RFC 4511) that this machine belongs to. The console's events are served while a server
// is asked.
class DirectoryLookups {
 public:
  static constexpr std::string_view program_id = "mirvan_ad.lookups";

  virtual ~DirectoryLookups() = default;

  // The DNS name of the directory's root domain, in lower case; empty if the machine belongs to none. Raises
  // zrl::Error if the directory does not answer.
  virtual std::string RootDomain() = 0;
};

// The users that a directory knows.
class DirectoryUsers {
 public:
  static constexpr std::string_view program_id = "mirvan_ad.users";

  virtual ~DirectoryUsers() = default;

  // The mail addresses of all users in the directory, in lower case and without a prefix ("smtp:"). An
  // address may occur more than once. Raises zrl::Error if the answer is incomplete, so that a caller never
  // takes a part for the whole; the console's events are served meanwhile.
  //
  // `server` is "host", "host:port", "ldap://host:port" or "ldaps://host:port". The users are those
  // below the base that the address names ("ldap://host/dc=corp,dc=example"), else below the
  // directory's default naming context, else below all of its naming contexts.
  virtual StringList addresses(std::string_view server) = 0;
};

}  // namespace zrl
