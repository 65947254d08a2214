#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/contracts/statement.h"

namespace zrl {

// What the entries of a list are, which decides how its files are read. In the files of every list, a line
// whose first character is "#" is a comment.
enum class ListKind : std::uint8_t {
  names,    // addresses, networks, extensions: no entry begins with a bracket
  domains,  // names of domains: their files may have comments behind entries, and lines as in a hosts file
  texts,    // words and file names, which may begin with any character but "#"
};

// A longer line, in bytes without its end, makes a list file invalid.
inline constexpr std::size_t longest_list_line = std::size_t{64} << 10;

// A list of the proxy: a table of one text column, one entry per row. The tables and their content are
// described in docs/operating.md; the definitions are in the component's schema. All names are literals, so
// objects may be copied and kept.
struct ListTable {
  std::string_view name;  // identifies the list, in records and on the command line
  // As statements write them; the database ignores their case.
  Literal table;
  Literal column;
  ListKind kind = ListKind::names;
};

// Each list that more than one file names is defined here, so that pages, components and hosts cannot
// disagree on its table; a list of one page may stand in that page. Its table is in the component's schema.
namespace list {

inline constexpr ListTable black_domains{"domains.black", "blacklist", "entry", ListKind::domains};
inline constexpr ListTable white_domains{"domains.white", "whitelist", "entry", ListKind::domains};
inline constexpr ListTable local_domains{"domains.local", "mydomain", "entry", ListKind::domains};
inline constexpr ListTable exempt_domains{"domains.except", "exceptdomain", "entry", ListKind::domains};
inline constexpr ListTable black_addresses{"ips.black", "Blackhost", "IPNumber"};
inline constexpr ListTable white_addresses{"ips.white", "Whitehost", "IPNumber"};
inline constexpr ListTable local_addresses{"ips.local", "myips", "IPNumber"};
inline constexpr ListTable black_subnets{"subnets.black", "blacksub", "subnet"};
inline constexpr ListTable white_subnets{"subnets.white", "whitesub", "subnet"};
inline constexpr ListTable black_mails{"mails.black", "blackmail", "entry"};
inline constexpr ListTable white_mails{"mails.white", "whitemail", "entry"};
inline constexpr ListTable exempt_mails{"mails.except", "exceptmail", "entry"};
inline constexpr ListTable local_users{"users.local", "localmail", "entry"};
inline constexpr ListTable subject_keywords{"keywords.subject", "swords", "entry", ListKind::texts};
inline constexpr ListTable body_keywords{"keywords.body", "words", "entry", ListKind::texts};
inline constexpr ListTable white_subjects{"keywords.subject-white", "subjectwhite", "entry", ListKind::texts};
inline constexpr ListTable black_zones{"zones.black", "rblserver", "entry", ListKind::domains};
inline constexpr ListTable white_zones{"zones.white", "wblserver", "entry", ListKind::domains};
inline constexpr ListTable uri_zones{"zones.uri", "surblserver", "entry", ListKind::domains};
inline constexpr ListTable file_names{"files", "files", "files", ListKind::texts};
inline constexpr ListTable extensions{"extensions", "extension", "extension"};

}  // namespace list

// "DELETE FROM table where column='text'". Deletes every row with this entry, the case of A to Z ignored. The
// statement copies `text`; one with an apostrophe makes it malformed, so callers escape it first where the
// list holds escaped entries (core/text/list_entry.h).
inline Statement delete_from(const ListTable& list, std::string_view text) {
  return delete_from(list.table, list.column, text);
}

// "INSERT INTO table (column) VALUES ('text')". Adds a row even if the entry is there already. A blank `text`
// makes the statement malformed.
inline Statement insert_into(const ListTable& list, std::string_view text) {
  return insert_into(list.table, list.column, text);
}

}  // namespace zrl
