#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "core/page.h"

namespace zrl {

// The checks of the sender's domain by SPF (RFC 7208) and by Caller-ID, the records that replace those which
// domains do not publish, and for each check a panel that tries a domain's record on an address. The panels
// take no local part and no greeting: the sender is postmaster at the domain. Look-ups and checks block, for
// about 20 seconds at most; events are served meanwhile.
class SpfPage : public Page {
 public:
  explicit SpfPage(Console& console);

  Frame Frame4{*this, "Frame4", ""};
  CheckBox check_spf{*this, "check_spf", "Check for remote SPF record",
                     "Looks up which servers the sender's domain allows to send its mail"};
  CheckBox use_default_spf{*this, "use_default_spf",
                           "Use \"best guess\" record below if none published via DNS"};
  TextField default_spf{*this,
                        "default_spf",
                        "The record that is used for domains without one; stored by the button",
                        {.fixed_pitch = true, .placeholder = "v=spf1 a/24 mx/24 ptr ~all"}};
  Label Label1{*this, "Label1", "\"Best guess\" SPF record", default_spf};
  CheckBox whitel_spf{*this, "whitel_spf", "Whitelist emails sent from SPF authenticated Domains",
                      "Mail from a server that its domain allows passes without further checks"};
  Button updatespf{*this, "updatespf", "Update \"best guess\"", "Stores the SPF record above"};

  Frame Frame1{*this, "Frame1", "Microsoft CallerID"};
  CheckBox check_cid{*this, "check_cid", "Check for remote Caller-ID record",
                     "Looks up which servers the sender's domain names in its e-mail policy"};
  CheckBox use_default_cid{*this, "use_default_cid",
                           "Use \"best guess\" record below if none published via DNS"};
  TextField default_cid{*this,
                        "default_cid",
                        "The e-mail policy that is used for domains without one; stored by the button",
                        {.fixed_pitch = true, .placeholder = "<ep xmlns='http://ms.net/1'>..."}};
  Label Label2{*this, "Label2", "\"Best guess\" Caller-ID record", default_cid};
  Button updatecid{*this, "updatecid", "Update \"best guess\"", "Stores the Caller-ID record above"};

  Frame Frame2{*this, "Frame2", "SPF Test"};
  TextField spfdom{
      *this, "spfdom", "The domain that mail claims to come from", {.placeholder = "example.com"}};
  Label Label3{*this, "Label3", "Domain:", spfdom};
  TextField spfip{
      *this, "spfip", "The IPv4 or IPv6 address of the sending server", {.placeholder = "192.0.2.1"}};
  Label Label4{*this, "Label4", "IP number:", spfip};
  TextField spfrec{*this,
                   "spfrec",
                   "The record that the check uses: the one found, or any that you enter",
                   {.fixed_pitch = true}};
  Label Label5{*this, "Label5", "Record:", spfrec};
  Button getspf{*this, "getspf", "Get Record", "Looks up the domain's record and follows its redirects"};
  Button checkspf{
      *this, "checkspf", "Check",
      "Tells whether the record allows the address; an empty record is replaced by the \"best guess\""};
  Label spfresult{
      *this, "spfresult", "",
      "The reason stands under \"Activity\", and what was assumed for a record that asks for more "
      "than domain and IP number"};

  Frame Frame3{*this, "Frame3", "Microsoft CallerID Test"};
  TextField ciddom{
      *this, "ciddom", "The domain that mail claims to come from", {.placeholder = "example.com"}};
  Label Label6{*this, "Label6", "Domain:", ciddom};
  TextField cidip{
      *this, "cidip", "The IPv4 or IPv6 address of the sending server", {.placeholder = "192.0.2.1"}};
  Label Label8{*this, "Label8", "IP number:", cidip};
  TextField cidrec{*this,
                   "cidrec",
                   "The record that the check uses: the one found, or any that you enter",
                   {.fixed_pitch = true}};
  Label Label9{*this, "Label9", "Record:", cidrec};
  Button getcid{*this, "getcid", "Get CID Record", "Looks up the domain's e-mail policy"};
  Button checkcid{
      *this, "checkcid", "Check",
      "Tells whether the record allows the address; an empty record is replaced by the \"best guess\""};
  Label cidresult{*this, "cidresult", "", "The reason stands under \"Activity\""};

  Label Label7{*this, "Label7",
               "Please note: Tests should not take more than a few seconds. If they take longer there are "
               "problems with your local DNS Server and you should deactivate all DNS based test until you "
               "fixed your DNS problems."};

 private:
  // The controls of a test panel.
  struct Panel {
    TextField& domain;
    TextField& address;
    TextField& record;
    Label& result;
    TextField& best_guess;
    TextField& other_address;
  };
  Panel spf_{spfdom, spfip, spfrec, spfresult, default_spf, cidip};
  Panel cid_{ciddom, cidip, cidrec, cidresult, default_cid, spfip};

  using Fetch = std::string (DnsClient::*)(std::string_view);
  using Check = SenderCheck (DnsClient::*)(std::string_view, std::string_view, std::string_view,
                                           std::string_view);

  void load() override;

  void get_spf();
  void get_cid();
  void test(const Panel& panel, std::string_view operation, Check check);
  bool fetch(TextField& record, std::string_view operation, Fetch look_up, const std::string& argument);
  void say_fetched(const TextField& record, const TextField& domain);
  bool is_authorised(const Panel& panel, std::string_view operation, Check check);

  Held<DnsClient> dns_{*this, "DNS component"};
};

}  // namespace zrl
