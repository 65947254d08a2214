#pragma once

#include <string>
#include <string_view>

namespace zrl {

// What a check of a sender's domain found.
struct SenderCheck {
  bool authorised = false;
  // For people: pass, fail, softfail, neutral, none, temperror or permerror, and what decided:
  // "fail: -all in the record of example.com". UTF-8 of a bounded length, which quotes strangers.
  std::string reason;
};

// Looks names and addresses up in the DNS, and checks senders by what their domains publish. Calls return
// after the answer or the time-out; the console's event loop is served meanwhile. A call without a usable
// answer, or with an argument that makes no sense, raises zrl::Error; blanks around arguments are ignored.
// Records and reasons are strangers' texts. Domains are ASCII (core/text/domain_names.h).
class DnsClient {
 public:
  static constexpr std::string_view program_id = "spf_dns.DNSClass";

  virtual ~DnsClient() = default;

  // The host name of an IPv4 address in dotted form, without a trailing dot (the PTR record, RFC 1035,
  // section 3.5). Raises zrl::Error if there is none or no server answers.
  virtual std::string PTR_Query(std::string_view address) = 0;

  // The SPF record of a domain (RFC 7208), its strings joined; empty if it publishes none. Raises
  // zrl::Error if it publishes several.
  virtual std::string get_spf_records(std::string_view domain) = 0;

  // The record that the modifier `redirect` of this record points to, at another domain (RFC 7208, section
  // 6.1). Raises zrl::Error if the record has no effective redirect, if there is no record at its target, or
  // if the target depends on the client. Macros are expanded for the domain that this record was fetched for,
  // provided that it is the last record that was fetched.
  virtual std::string get_redirect(std::string_view record) = 0;

  // The Caller-ID record, an XML document, in the TXT record of the name _ep.DOMAIN; empty if there is
  // none. Raises zrl::Error if there are several.
  virtual std::string get_cid_records(std::string_view domain) = 0;

  // Whether the client at an IPv4 or IPv6 address may send in the name of `sender`, by this SPF record of the
  // domain (RFC 7208). The record may be an edited one that nobody publishes; the last one that was fetched
  // for this domain is taken as published where it was found. A failure of the DNS is a finding (temperror)
  // and raises nothing; a check ends within 20 s.
  virtual SenderCheck check_spf(std::string_view address, std::string_view domain, std::string_view record,
                                std::string_view sender) = 0;

  // The same by a Caller-ID record, an XML document.
  virtual SenderCheck check_cid(std::string_view address, std::string_view domain, std::string_view record,
                                std::string_view sender) = 0;
};

}  // namespace zrl
