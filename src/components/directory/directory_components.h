#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "core/contracts/directory.h"
#include "core/contracts/host.h"
#include "core/text/string_list.h"

// What directory servers (LDAP, RFC 4511) know about domains and users. Nobody signs in: servers
// are asked for what they tell everybody.
namespace zrl {

struct DirectoryLimits {
  std::chrono::milliseconds connect{5'000};
  std::chrono::milliseconds answer{30'000};  // between two parts of an answer
  std::chrono::milliseconds total{10 * 60'000};
  std::size_t message_bytes = std::size_t{16} << 20;  // a longer one ends the connection
  std::size_t addresses = 5'000'000;
  std::size_t address_bytes = std::size_t{512} << 20;
  int page_size = 500;
};

struct DirectorySettings {
  // Called now and then while a server is asked. `serve` lets waiting events run; what it raises
  // ends the question. Both may be empty.
  std::function<void()> serve;
  std::function<void(const Progress&)> report;

  // Certificates that servers are held to (PEM); what the system's ldap.conf says if empty.
  std::filesystem::path certificates;
  DirectoryLimits limits;
};

// `server` tells the server's address as below. Without one the machine belongs to no directory.
std::shared_ptr<DirectoryLookups> make_directory_lookups(std::function<std::string()> server,
                                                         DirectorySettings settings = {});

// The addresses of everybody in the directory who is not a mere contact: the values of `mail` and
// `proxyAddresses` that are SMTP addresses, without their prefix, in lower case. Repeated values
// may stand there more than once. Raises zrl::Error if the answer is not complete.
//
// `server` is "host", "host:port", "ldap://host:port" or "ldaps://host:port". The users are those
// below the base that the address names ("ldap://host/dc=corp,dc=example"), else below the
// directory's default naming context, else below all of its naming contexts.
StringList directory_users(std::string_view server, const DirectorySettings& settings = {});

}  // namespace zrl
