#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "components/dns/ip_address.h"

namespace zrl::dns {

// The senders of a domain's mail according to its Caller-ID record: an XML document of the namespace
// http://ms.net/1, in TXT records of the name _ep.DOMAIN.
//
//   <ep xmlns='http://ms.net/1' testing='true'><out><m>
//     <mx/><a>192.0.2.1</a><r>198.51.100.0/24</r><indirect>example.net</indirect>
//   </m></out></ep>
//
// <noMailServers/> in place of servers states that the domain sends no mail. Unknown elements are ignored.
struct CallerIdRecord {
  static constexpr std::size_t longest = 16384;  // of the document, in bytes

  struct Network {
    IpAddress address;
    unsigned prefix;
  };

  bool testing = false;  // the domain tries the record out
  bool no_mail_servers = false;
  bool exchangers = false;  // the domain's own
  std::vector<Network> networks;
  std::vector<std::string> indirect;  // domains whose records count too
};

// Whether the text looks like such a document; parsing it may still fail.
bool is_caller_id_record(std::string_view text);

// Raises zrl::Error if the document is not well-formed, has a document type (which could define entities), is
// too long, or holds an invalid address. Nothing outside the text is read.
CallerIdRecord parse_caller_id_record(std::string_view text);

}  // namespace zrl::dns
