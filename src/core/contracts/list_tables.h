#pragma once

#include <string_view>

#include "core/contracts/statement.h"

namespace zrl {

// A list of the proxy: a table of one text column, one entry per row. The tables and their content are
// described in docs/operating.md; the definitions are in the component's schema. All names are literals, so
// objects may be copied and kept.
struct ListTable {
  std::string_view name;  // what people and the command line call it
  // As statements write them; the database ignores their case.
  Literal table;
  Literal column;
};

// Each list is defined here once, so that pages, components and hosts cannot disagree on its table. A new
// list needs a line here and its table in the component's schema.
namespace list {

inline constexpr ListTable black_domains{"domains.black", "blacklist", "entry"};
inline constexpr ListTable white_domains{"domains.white", "whitelist", "entry"};
inline constexpr ListTable local_domains{"domains.local", "mydomain", "entry"};
inline constexpr ListTable exempt_domains{"domains.except", "exceptdomain", "entry"};
inline constexpr ListTable black_addresses{"ips.black", "Blackhost", "IPNumber"};
inline constexpr ListTable white_addresses{"ips.white", "Whitehost", "IPNumber"};
inline constexpr ListTable local_addresses{"ips.local", "myips", "IPNumber"};
inline constexpr ListTable black_subnets{"subnets.black", "blacksub", "subnet"};
inline constexpr ListTable white_subnets{"subnets.white", "whitesub", "subnet"};
inline constexpr ListTable black_mails{"mails.black", "blackmail", "entry"};
inline constexpr ListTable white_mails{"mails.white", "whitemail", "entry"};
inline constexpr ListTable exempt_mails{"mails.except", "exceptmail", "entry"};
inline constexpr ListTable local_users{"users.local", "localmail", "entry"};
inline constexpr ListTable subject_keywords{"keywords.subject", "swords", "entry"};
inline constexpr ListTable body_keywords{"keywords.body", "words", "entry"};
inline constexpr ListTable white_subjects{"keywords.subject-white", "subjectwhite", "entry"};
inline constexpr ListTable black_zones{"zones.black", "rblserver", "entry"};
inline constexpr ListTable white_zones{"zones.white", "wblserver", "entry"};
inline constexpr ListTable uri_zones{"zones.uri", "surblserver", "entry"};
inline constexpr ListTable file_names{"files", "files", "files"};
inline constexpr ListTable extensions{"extensions", "extension", "extension"};

}  // namespace list

// "DELETE FROM table where column='text'". Deletes every row with this entry, the case of A to Z ignored. The
// statement copies `text`; one with an apostrophe makes it malformed, so callers escape it first where the
// list holds escaped entries (core/text/list_entry.h).
inline Statement delete_from(const ListTable& list, std::string_view text) {
  return delete_from(list.table, list.column, text);
}

// "INSERT INTO table (column) VALUES ('text')". Adds a row even if the entry is there already.
inline Statement insert_into(const ListTable& list, std::string_view text) {
  return insert_into(list.table, list.column, text);
}

}  // namespace zrl
