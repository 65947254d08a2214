#pragma once

#include <array>
#include <string_view>
#include <utility>

#include "core/contracts/list_tables.h"

namespace zrl {

// What people call a list, as it stands in the middle of a sentence, behind "the": English, a literal of the
// catalogue. The name of the list if it has no such words.
constexpr std::string_view words_of(const ListTable& list) {
  constexpr std::pair<std::string_view, std::string_view> words[] = {
      {list::black_domains.name, "domain black list"},
      {list::white_domains.name, "domain white list"},
      {list::local_domains.name, "list of local domains"},
      {list::exempt_domains.name, "list of domain exceptions"},
      {list::black_addresses.name, "IP black list"},
      {list::white_addresses.name, "IP white list"},
      {list::local_addresses.name, "list of local IP numbers"},
      {list::black_subnets.name, "subnet black list"},
      {list::white_subnets.name, "subnet white list"},
      {list::black_mails.name, "address black list"},
      {list::white_mails.name, "address white list"},
      {list::exempt_mails.name, "list of address exceptions"},
      {list::local_users.name, "list of local users"},
      {list::subject_keywords.name, "list of subject keywords"},
      {list::body_keywords.name, "list of body keywords"},
      {list::white_subjects.name, "subject white list"},
      {list::black_zones.name, "list of DNS black lists"},
      {list::white_zones.name, "list of DNS white lists"},
      {list::uri_zones.name, "list of URI block lists"},
      {list::file_names.name, "list of blocked file names"},
      {list::extensions.name, "list of blocked extensions"},
  };
  for (const auto& [name, text] : words) {
    if (name == list.name) return text;
  }
  return list.name;
}

}  // namespace zrl
