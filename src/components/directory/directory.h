#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <memory>

#include "core/contracts/console_services.h"
#include "core/contracts/directory.h"

// What directory servers (LDAP, RFC 4511) know about domains and users. Nobody signs in: servers
// are asked for what they tell everybody. The console's events are served while a server is asked; what
// they raise ends the question.
namespace zrl::directory {

struct Limits {
  std::chrono::milliseconds connect{5'000};
  std::chrono::milliseconds answer{30'000};  // between two parts of an answer
  std::chrono::milliseconds total{10 * 60'000};
  std::size_t message_bytes = std::size_t{16} << 20;  // a longer one ends the connection
  std::size_t addresses = 5'000'000;
  std::size_t address_bytes = std::size_t{512} << 20;
  int page_size = 500;
};

struct Options {
  // Certificates that servers are held to (PEM); what the system's ldap.conf says if empty.
  std::filesystem::path certificates;
  Limits limits;
};

// Asks the server that the option `ldapserver` names. Without one the machine belongs to no directory.
std::shared_ptr<DirectoryLookups> make(ConsoleServices& console, const Options& options = {});

// Users are the entries with a value of `mail` or `proxyAddresses` that is an SMTP address; mere contacts
// are none.
std::shared_ptr<DirectoryUsers> make_users(ConsoleServices& console, const Options& options = {});

}  // namespace zrl::directory
