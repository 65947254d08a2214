#pragma once

#include <string>
#include <vector>

#include "core/contracts/statement.h"
#include "host/sample/generator.h"

namespace zrl::sample {

using Texts = std::vector<std::string>;

inline constexpr char forward_address[] = "192.0.2.9";
inline constexpr char listen_address[] = "192.0.2.10";

// A table of one column with the entries that it is to hold.
struct ListTable {
  Literal table;
  Literal column;
  Texts entries;
};

// The lists, and what the logs and the archive take from them so that all of them agree. No host, domain
// or address is on two opposite lists. The first entries are the ones that occur most often.
struct Lists {
  Texts black_hosts;
  Texts white_hosts;
  Texts neutral_hosts;
  Texts black_senders;
  Texts white_senders;
  Texts unlisted_senders;
  Texts local_users;
  Texts subject_keywords;
  Texts body_keywords;
  std::vector<ListTable> tables;  // complete
};

Lists make_lists();

// Names under the domains that are reserved for examples.
std::string shady_domain(Generator& random);
std::string decent_domain(Generator& random);

}  // namespace zrl::sample
