#pragma once

#include <string>
#include <vector>

// What scripts may look at outside of the engine. A host offers as much of it as it has; scripts change
// nothing through it. All texts are UTF-8.
namespace zrl::vbs {

// Why a service refuses, as a number of the language (53: File not found, 70: Permission denied, ...).
struct ServiceError {
  int number = 0;
  std::string text;  // empty: that of the number
};

// The folder with the scripts of the console, to read. Paths are relative to it, with either slash; they are
// compared as the file system does. Nothing outside of the folder is revealed, not even whether it is there.
class ScriptFiles {
 public:
  virtual ~ScriptFiles() = default;
  virtual bool file_exists(const std::string& path) = 0;
  virtual bool folder_exists(const std::string& path) = 0;
  // The whole text. Raises ServiceError: 53, 70, or 7 for a file that is too large.
  virtual std::string contents(const std::string& path) = 0;
};

// What the product itself asks about a sender. Each question may take seconds; the time counts as the
// script's. No answer is an empty one, as it is for the product's own checks. Raises ServiceError where a
// question cannot be asked at all.
class Lookups {
 public:
  virtual ~Lookups() = default;
  // The address of a host.
  virtual std::string address(const std::string& host) = 0;
  // The host name of an address.
  virtual std::string name(const std::string& address) = 0;
  // The mail exchangers of a domain, the preferred one first.
  virtual std::vector<std::string> exchangers(const std::string& domain) = 0;
  // What a DNS-based list answers for an address, 127.0.0.2 say; empty where it is not listed.
  virtual std::string listed(const std::string& zone, const std::string& address) = 0;
  // Whether a list of the console has this entry, as it stands there. `list` is the name of its table;
  // raises 5 where there is no such list.
  virtual bool has_entry(const std::string& list, const std::string& entry) = 0;
};

}  // namespace zrl::vbs
