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

// Looks names and addresses up in the DNS, and checks senders by what their domains publish. Calls
// return when the answer or the time-out has come; the console's event loop is served meanwhile.
// A call that gets no usable answer, or no sensible argument, raises zrl::Error; blanks around arguments
// do not count.
class DnsClient {
 public:
  static constexpr std::string_view program_id = "spf_dns.DNSClass";

  virtual ~DnsClient() = default;

  // The host name of an IPv4 address in dotted form, without a trailing dot (RFC 1035, PTR). Raises
  // zrl::Error if there is none or no server answers.
  virtual std::string PTR_Query(std::string_view address) = 0;

  // The SPF record of a domain (RFC 7208), its strings joined; empty if it publishes none. Raises
  // zrl::Error if it publishes several.
  virtual std::string get_spf_records(std::string_view domain) = 0;

  // The record that the redirect of this record leads to, which stands at another domain. Raises
  // zrl::Error if the record has no redirect that counts, or there is no record where it leads, or that
  // depends on the client. Macros mean the domain that this record was fetched for, if it is the last
  // that was fetched.
  virtual std::string get_redirect(std::string_view record) = 0;

  // The Caller-ID record, an XML document, in the TXT record of the name _ep.DOMAIN; empty if there is
  // none. Raises zrl::Error if there are several.
  virtual std::string get_cid_records(std::string_view domain) = 0;

  // Whether the client at an IPv4 or IPv6 address may send in the name of `sender`, by this SPF record
  // of the domain (RFC 7208). The record may be any; the last that was fetched for this domain counts as
  // standing where it was found. A failure of the DNS is a finding (temperror); a check ends within 20 s.
  virtual SenderCheck check_spf(std::string_view address, std::string_view domain, std::string_view record,
                                std::string_view sender) = 0;

  // The same by a Caller-ID record.
  virtual SenderCheck check_cid(std::string_view address, std::string_view domain, std::string_view record,
                                std::string_view sender) = 0;
};

}  // namespace zrl
