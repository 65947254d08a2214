#pragma once

#include <string>
#include <string_view>

namespace zrl {

// The directory that this machine belongs to.
class DirectoryLookups {
 public:
  static constexpr std::string_view program_id = "mirvan_ad.lookups";

  virtual ~DirectoryLookups() = default;

  // The DNS name of the directory's root domain, in lower case; empty if the machine belongs to
  // none. Raises zrl::Error if the directory does not answer.
  virtual std::string RootDomain() = 0;
};

}  // namespace zrl
