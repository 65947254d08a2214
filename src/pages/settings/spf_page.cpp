#include "pages/settings/spf_page.h"

#include "core/text/text.h"

namespace zrl {

namespace {

constexpr int most_redirects = 3;

constexpr Sentence best_guess_stored{"The best guess is stored", "The best guess was not stored"};

bool is_redirect(std::string_view record) {
  return lower(record).find("redirect=") != std::string::npos;
}

}  // namespace

SpfPage::SpfPage(Console& console) : Page(console, "spf", "SPF and Caller-ID") {
  bind_switches({
      {check_spf, "check_spf"},
      {use_default_spf, "use_default_spf"},
      {whitel_spf, "whitel_spf"},
      {check_cid, "check_cid"},
      {use_default_cid, "use_default_cid"},
  });
  updatespf.on_click = [this] {
    set_string("default_spf", default_spf.text());
    say(best_guess_stored);
  };
  updatecid.on_click = [this] {
    set_string("default_cid", default_cid.text());
    say(best_guess_stored);
  };
  bind_text(default_spf, "default_spf");
  bind_text(default_cid, "default_cid");
  for (TextField* domain : {&spfdom, &ciddom}) domain->set_expects(expects::domain);
  for (TextField* address : {&spfip, &cidip}) address->set_expects(expects::ip_number);
  bind_busy(getspf, &SpfPage::get_spf);
  bind_busy(getcid, &SpfPage::get_cid);
  bind_busy(checkspf, [this] { test(spf_, "check_spf", &DnsClient::check_spf); });
  bind_busy(checkcid, [this] { test(cid_, "check_cid", &DnsClient::check_cid); });

  set_layout(column({
      frame(Frame4,
            column({grid({check_spf, use_default_spf, whitel_spf}), row({grow(default_spf), updatespf})})),
      frame(Frame1, column({grid({check_cid, use_default_cid}), row({grow(default_cid), updatecid})})),
      frame(Frame2, column({grid({spfdom, spfip}), row({grow(spfrec)}), row({getspf, checkspf, spfresult})})),
      frame(Frame3, column({grid({ciddom, cidip}), row({grow(cidrec)}), row({getcid, checkcid, cidresult})})),
      Label7,
  }));
}

void SpfPage::load() {
  dns_.make();
  load_switches();
  if (const auto text = read_string("default_cid")) default_cid.set_text(*text);
  if (const auto text = read_string("default_spf")) default_spf.set_text(*text);
}

void SpfPage::get_spf() {
  if (spfdom.text().empty()) return say_nothing(said::needs_text);
  if (ciddom.text().empty()) ciddom.set_text(spfdom.text());
  spfresult.set_caption("");
  // A record that stayed after a failure would be checked as that of another domain.
  spfrec.set_text("");
  fetch(spfrec, "get_spf_records", &DnsClient::get_spf_records, spfdom.text());
  for (int i = 0; i < most_redirects && is_redirect(spfrec.text()); ++i) {
    // A redirect that could not be followed would fail again.
    if (!fetch(spfrec, "get_redirect", &DnsClient::get_redirect, spfrec.text())) break;
  }
  say_fetched(spfrec, spfdom);
}

void SpfPage::get_cid() {
  cidrec.set_text("");
  fetch(cidrec, "get_cid_records", &DnsClient::get_cid_records, ciddom.text());
  say_fetched(cidrec, ciddom);
}

void SpfPage::say_fetched(const TextField& record, const TextField& domain) {
  if (record.text().empty()) {
    say_failed("No record found for %1", {domain.text()});
  } else {
    say_done("Record of %1 found", {domain.text()});
  }
}

void SpfPage::test(const Panel& panel, std::string_view operation, Check check) {
  if (panel.address.text().empty()) return say_nothing(said::needs_text);
  if (panel.record.text().empty() && !panel.best_guess.text().empty()) {
    panel.record.set_text(panel.best_guess.text());
  }
  panel.result.set_caption(
      translate(is_authorised(panel, operation, check) ? "authenticated" : "NOT authenticated"));
  if (panel.other_address.text().empty()) panel.other_address.set_text(panel.address.text());
}

bool SpfPage::fetch(TextField& record, std::string_view operation, Fetch look_up,
                    const std::string& argument) {
  std::string found;
  const auto call = [&, held = argument](DnsClient& dns) { found = (dns.*look_up)(held); };
  const bool worked = ask(dns_, std::string(operation) + " " + argument, call);
  if (worked) record.set_text(found);
  return worked;
}

bool SpfPage::is_authorised(const Panel& panel, std::string_view operation, Check check) {
  const std::string address = panel.address.text();
  const std::string domain = panel.domain.text();
  const std::string record = panel.record.text();
  const std::string sender = "postmaster@" + std::string(trim(domain));
  std::string text(operation);
  text.append(" ").append(address).append(" ").append(domain).append(" ").append(record);
  text.append(" ").append(sender);

  SenderCheck found;
  const auto call = [&](DnsClient& dns) { found = (dns.*check)(address, domain, record, sender); };
  if (!ask(dns_, text, call)) {
    say_failed("%1 was not checked", {address});
    return false;
  }
  noted(text + ": " + found.reason);
  if (found.authorised) {
    say_done("%1 is authenticated for %2", {address, domain});
  } else {
    say_nothing("%1 is NOT authenticated for %2", {address, domain});
  }
  return found.authorised;
}

}  // namespace zrl
