#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "components/dns/sender_check.h"
#include "components/dns/spf_macros.h"

namespace zrl::dns {

struct SpfDirective {
  enum class Mechanism : std::uint8_t { all, include, a, mx, ptr, ip4, ip6, exists };

  Mechanism mechanism = Mechanism::all;
  SenderResult result = SenderResult::pass;  // of a match, by the qualifier
  std::optional<MacroString> domain;         // the record's own domain without it
  IpAddress network;                         // of ip4 and ip6
  unsigned prefix4 = 32;
  unsigned prefix6 = 128;
  std::string text;  // as it was written
};

// An SPF record (RFC 7208, section 12).
struct SpfRecord {
  std::vector<SpfDirective> directives;
  std::optional<MacroString> redirect;
  std::optional<MacroString> explanation;

  bool has_all() const;
};

// Whether the text has the version of an SPF record: "v=spf1", followed by a blank or nothing.
bool is_spf_record(std::string_view text);

// Raises SenderFault with permerror if any term breaks the grammar.
SpfRecord parse_spf_record(std::string_view text);

}  // namespace zrl::dns
