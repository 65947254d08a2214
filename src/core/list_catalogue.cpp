#include "core/list_catalogue.h"

#include <algorithm>

namespace zrl {

namespace {

constexpr ListSwitch domains[] = {{"checkbw", "Use the domain lists"}};
constexpr ListSwitch local_domains[] = {{"norelay", "Refuse relaying"},
                                        {"checklocalhelo", "Check local HELO names"},
                                        {"nofakedom", "Protect local domains"}};
constexpr ListSwitch local_addresses[] = {{"norelay", "Refuse relaying"},
                                          {"checklocalhelo", "Check local HELO names"}};
constexpr ListSwitch exempt_domains[] = {{"exceptdomain", "Use the domain exceptions"}};
constexpr ListSwitch exempt_mails[] = {{"exceptmail", "Use the address exceptions"}};
constexpr ListSwitch addresses[] = {{"ip_checking", "Use the IP lists"}};
constexpr ListSwitch subnets[] = {{"subnetcheck", "Use the subnet lists"}};
constexpr ListSwitch mails[] = {{"checkmail", "Sender addresses"}};
constexpr ListSwitch users[] = {{"localmail", "Check recipients"}, {"nofakemail", "Protect local users"}};
constexpr ListSwitch subjects[] = {{"checksubject", "Subject"}};
constexpr ListSwitch bodies[] = {{"checkbody", "Message body"}};
// The white list of subjects works only while subjects are checked.
constexpr ListSwitch white_subjects[] = {{"checksubject", "Subject"},
                                         {"enablesubjectwhite", "Use the subject white list"}};
constexpr ListSwitch zones[] = {{"RBLcheck", "Use the DNS block lists"}};
constexpr ListSwitch uri_zones[] = {{"enablesurbl", "Use the URI block lists"}};
constexpr ListSwitch files[] = {{"checkfiles", "File names of attachments"},
                                {"checkfilesstream", "File names in the message stream"}};
constexpr ListSwitch extensions[] = {{"checkextension", "Extensions of attachments"}};

// Of domains, the proxy's rule for sub-domains is its own; the lists of domains hold e-mail addresses too.
constexpr Matches of_domain{Match::same, Match::any_address, Match::parent_domain};
constexpr Matches domain_decides{Match::same, Match::any_address};
constexpr Matches of_entry{Match::same};
constexpr Matches of_network{Match::same, Match::network};
constexpr Matches of_mail{Match::same, Match::any_address};
constexpr Matches of_words{Match::word, Match::expression};
constexpr Matches of_extension{Match::same, Match::extension};

constexpr std::string_view black[] = {"reloadblack"};
constexpr std::string_view white[] = {"reloadwhite"};
constexpr std::string_view black_mail[] = {"reloadblack", "reloadauto"};
constexpr std::string_view white_mail[] = {"reloadwhite", "reloadauto"};

// Of servers that are asked; an entry of such a list decides nothing by itself.
constexpr KnownList zone_list(const ListTable& table, std::string_view title, std::string_view words,
                              std::string_view phrase, std::string_view page,
                              std::span<const ListSwitch> switches) {
  return {.table = table,
          .title = title,
          .words = words,
          .phrase = phrase,
          .page = page,
          .entries = EntryKind::domain,
          .effect = Effect::is_asked,
          .matches = of_entry,
          .decides = {},
          .switches = switches};
}

constexpr KnownList lists[] = {
    {.table = list::black_domains,
     .title = "Domain black list",
     .words = "domain black list",
     .phrase = "%1 is on the domain black list",
     .page = "domainbw",
     .entries = EntryKind::domain,
     .effect = Effect::rejects,
     .matches = of_domain,
     .decides = domain_decides,
     .switches = domains,
     .flags = black},
    {.table = list::white_domains,
     .title = "Domain white list",
     .words = "domain white list",
     .phrase = "%1 is on the domain white list",
     .page = "domainbw",
     .entries = EntryKind::domain,
     .effect = Effect::allows,
     .matches = of_domain,
     .decides = domain_decides,
     .switches = domains,
     .flags = white},
    {.table = list::local_domains,
     .title = "Local domains",
     .words = "list of local domains",
     .phrase = "%1 is a local domain",
     .page = "localstuff",
     .entries = EntryKind::domain,
     .effect = Effect::makes_local,
     .matches = of_domain,
     .decides = of_entry,
     .switches = local_domains},
    {.table = list::exempt_domains,
     .title = "Exempt domains",
     .words = "list of domain exceptions",
     .phrase = "%1 is an exempt domain",
     .page = "exceptions",
     .entries = EntryKind::domain,
     .effect = Effect::exempts,
     .matches = of_domain,
     .decides = of_entry,
     .switches = exempt_domains},
    {.table = list::black_addresses,
     .title = "Black list of IP numbers",
     .words = "IP black list",
     .phrase = "%1 is on the IP black list",
     .page = "ipbw",
     .entries = EntryKind::address,
     .effect = Effect::rejects,
     .matches = of_entry,
     .decides = of_entry,
     .switches = addresses},
    {.table = list::white_addresses,
     .title = "White list of IP numbers",
     .words = "IP white list",
     .phrase = "%1 is on the IP white list",
     .page = "ipbw",
     .entries = EntryKind::address,
     .effect = Effect::allows,
     .matches = of_entry,
     .decides = of_entry,
     .switches = addresses},
    {.table = list::local_addresses,
     .title = "Local IP numbers",
     .words = "list of local IP numbers",
     .phrase = "%1 is a local IP number",
     .page = "localstuff",
     .entries = EntryKind::address,
     .effect = Effect::makes_local,
     .matches = of_entry,
     .decides = of_entry,
     .switches = local_addresses},
    {.table = list::black_subnets,
     .title = "Subnet black list",
     .words = "subnet black list",
     .phrase = "%1 is on the subnet black list",
     .page = "subnets",
     .entries = EntryKind::network,
     .effect = Effect::rejects,
     .matches = of_network,
     .decides = of_network,
     .switches = subnets},
    {.table = list::white_subnets,
     .title = "Subnet white list",
     .words = "subnet white list",
     .phrase = "%1 is on the subnet white list",
     .page = "subnets",
     .entries = EntryKind::network,
     .effect = Effect::allows,
     .matches = of_network,
     .decides = of_network,
     .switches = subnets},
    {.table = list::black_mails,
     .title = "E-mail black list",
     .words = "address black list",
     .phrase = "%1 is on the e-mail black list",
     .page = "wbuser",
     .entries = EntryKind::mail_address,
     .effect = Effect::rejects,
     .matches = of_mail,
     .decides = of_entry,
     .switches = mails,
     .flags = black_mail},
    {.table = list::white_mails,
     .title = "E-mail white list",
     .words = "address white list",
     .phrase = "%1 is on the e-mail white list",
     .page = "wbuser",
     .entries = EntryKind::mail_address,
     .effect = Effect::allows,
     .matches = of_mail,
     .decides = of_entry,
     .switches = mails,
     .flags = white_mail},
    {.table = list::exempt_mails,
     .title = "Exempt e-mail addresses",
     .words = "list of address exceptions",
     .phrase = "%1 is an exempt e-mail address",
     .page = "exceptions",
     .entries = EntryKind::mail_address,
     .effect = Effect::exempts,
     .matches = of_mail,
     .decides = of_entry,
     .switches = exempt_mails},
    {.table = list::local_users,
     .title = "Local users",
     .words = "list of local users",
     .phrase = "%1 is a local user",
     .page = "localuser",
     .entries = EntryKind::mail_address,
     .effect = Effect::makes_local,
     .matches = of_mail,
     .decides = of_entry,
     .switches = users},
    {.table = list::subject_keywords,
     .title = "Subject keywords",
     .words = "list of subject keywords",
     .phrase = "%1 is a subject keyword",
     .page = "keywords",
     .entries = EntryKind::word,
     .effect = Effect::rejects,
     .matches = of_words,
     .decides = of_words,
     .switches = subjects},
    {.table = list::body_keywords,
     .title = "Body keywords",
     .words = "list of body keywords",
     .phrase = "%1 is a body keyword",
     .page = "keywords",
     .entries = EntryKind::word,
     .effect = Effect::rejects,
     .matches = of_words,
     .decides = of_words,
     .switches = bodies},
    {.table = list::white_subjects,
     .title = "Subject white list",
     .words = "subject white list",
     .phrase = "%1 is on the subject white list",
     .page = "keywords",
     .entries = EntryKind::word,
     .effect = Effect::allows,
     .matches = of_words,
     .decides = of_words,
     .switches = white_subjects,
     .all_switches = true},
    zone_list(list::black_zones, "DNS black lists", "list of DNS black lists",
              "%1 is one of the DNS black lists", "rblists", zones),
    zone_list(list::white_zones, "DNS white lists", "list of DNS white lists",
              "%1 is one of the DNS white lists", "rblists", zones),
    zone_list(list::uri_zones, "URI black lists", "list of URI block lists",
              "%1 is one of the URI black lists", "surbl", uri_zones),
    {.table = list::file_names,
     .title = "Blocked file names",
     .words = "list of blocked file names",
     .phrase = "%1 is a blocked file name",
     .page = "filescanner",
     .entries = EntryKind::word,
     .effect = Effect::rejects,
     .matches = of_entry,
     .decides = of_entry,
     .switches = files},
    {.table = list::extensions,
     .title = "Blocked extensions",
     .words = "list of blocked extensions",
     .phrase = "%1 is a blocked extension",
     .page = "filescanner",
     .entries = EntryKind::word,
     .effect = Effect::rejects,
     .matches = of_extension,
     .decides = of_extension,
     .switches = extensions},
};

}  // namespace

std::span<const KnownList> known_lists() {
  return lists;
}

const KnownList* find_list(std::string_view name) {
  const auto found = std::ranges::find(lists, name, [](const KnownList& one) { return one.table.name; });
  return found == std::end(lists) ? nullptr : found;
}

}  // namespace zrl
