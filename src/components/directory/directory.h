#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <memory>

#include "core/contracts/console_services.h"
#include "core/contracts/directory.h"

// What directory servers (LDAP version 3, RFC 4511) know about domains and users. Binds are anonymous, so
// only what a server shows without a log-in is found. Over ldaps:// the server's certificate is verified.
//
// Calls block; the console's events are served meanwhile, and what their handlers raise ends the call and is
// passed on. Every other failure, an exceeded limit included, is a zrl::Error. The objects belong to the
// console's thread and must not outlive the console.
namespace zrl::directory {

// What a server may cost. Exceeding any limit ends the connection and the call.
struct Limits {
  std::chrono::milliseconds connect{5'000};
  std::chrono::milliseconds answer{30'000};  // of silence between two parts of an answer
  std::chrono::milliseconds total{10 * 60'000};
  std::size_t message_bytes = std::size_t{16} << 20;  // one LDAP message
  std::size_t addresses = 5'000'000;
  std::size_t address_bytes = std::size_t{512} << 20;
  int page_size = 500;
};

struct Options {
  // A PEM file with the authorities that a server's certificate must come from; if empty, those that the
  // system's ldap.conf names.
  std::filesystem::path certificates;
  Limits limits;
};

// Asks the server that the string option `ldapserver` of the console's database names, read anew on each
// call. While it is empty, RootDomain() returns an empty text: the machine belongs to no directory.
std::shared_ptr<DirectoryLookups> make(ConsoleServices& console, const Options& options = {});

// Users are the entries that have an SMTP address in `mail` or `proxyAddresses`, groups included; entries of
// the class `contact` are left out. Progress goes to ConsoleServices::show_progress().
std::shared_ptr<DirectoryUsers> make_users(ConsoleServices& console, const Options& options = {});

}  // namespace zrl::directory
