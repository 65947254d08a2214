#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "components/dns/ip_address.h"
#include "core/text/error.h"

namespace zrl::dns {

// May this client send mail in the name of this domain?
struct SenderQuestion {
  IpAddress client;
  std::string domain;  // that publishes the record; terms without a domain, and macros, refer to it
  std::string record;
  std::string sender;  // LOCAL@DOMAIN
};

// What a check may find (RFC 7208, section 2.6). Only `pass` authorises.
enum class SenderResult : std::uint8_t { none, neutral, pass, fail, softfail, temperror, permerror };
std::string_view name_of(SenderResult result);

// Ends a check early; `result` is temperror or permerror. Checks catch it and turn it into their result.
class SenderFault : public Error {
 public:
  SenderFault(SenderResult result, const std::string& description)
      : Error(error_number::invalid_call, description), result_(result) {}

  SenderResult result() const { return result_; }

 private:
  SenderResult result_;
};

}  // namespace zrl::dns
