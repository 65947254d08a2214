#include "pages/settings/spf_page.h"

#include "core/text/error.h"
#include "core/text/text.h"

namespace zrl {

namespace {

constexpr int most_redirects = 3;

bool is_redirect(std::string_view record) {
  return lower(record).find("redirect=") != std::string::npos;
}

DnsClient& present(const std::shared_ptr<DnsClient>& dns) {
  if (!dns) throw Error(error_number::object_not_set, "no DNS component");
  return *dns;
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
  updatespf.on_click = [this] { set_string("default_spf", default_spf.text()); };
  updatecid.on_click = [this] { set_string("default_cid", default_cid.text()); };
  getspf.on_click = [this] { busy(getspf, [this] { get_spf(); }); };
  getcid.on_click = [this] { busy(getcid, [this] { get_cid(); }); };
  checkspf.on_click = [this] { busy(checkspf, [this] { test(spf_, "check_spf", &DnsClient::check_spf); }); };
  checkcid.on_click = [this] { busy(checkcid, [this] { test(cid_, "check_cid", &DnsClient::check_cid); }); };

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
  dns_ = component<DnsClient>();
  load_switches({&check_spf, &use_default_spf, &whitel_spf, &check_cid, &use_default_cid});
  if (const auto text = read_string("default_cid")) default_cid.set_text(*text);
  if (const auto text = read_string("default_spf")) default_spf.set_text(*text);
}

void SpfPage::get_spf() {
  if (spfdom.text().empty()) return;
  if (ciddom.text().empty()) ciddom.set_text(spfdom.text());
  spfresult.set_caption("");
  fetch(spfrec, "get_spf_records", &DnsClient::get_spf_records, spfdom.text());
  for (int i = 0; i < most_redirects && is_redirect(spfrec.text()); ++i) {
    // What could not be followed will not be followed by asking again.
    if (!fetch(spfrec, "get_redirect", &DnsClient::get_redirect, spfrec.text())) break;
  }
}

void SpfPage::get_cid() {
  fetch(cidrec, "get_cid_records", &DnsClient::get_cid_records, ciddom.text());
}

void SpfPage::test(const Panel& panel, std::string_view operation, Check check) {
  if (panel.address.text().empty()) return;
  if (panel.record.text().empty() && !panel.best_guess.text().empty()) {
    panel.record.set_text(panel.best_guess.text());
  }
  panel.result.set_caption(
      translate(is_authorised(panel, operation, check) ? "authenticated" : "NOT authenticated"));
  if (panel.other_address.text().empty()) panel.other_address.set_text(panel.address.text());
}

// The page may be left, and its fields changed, while the event loop is served; the calls hold their
// component and their arguments.
bool SpfPage::fetch(TextField& record, std::string_view operation, Fetch look_up,
                    const std::string& argument) {
  std::string found;
  const std::string text = std::string(operation) + " " + argument;
  const bool worked =
      console().attempt(ActivityRecord::Kind::component, text, Console::Step::read,
                        [&, dns = dns_, held = argument] { found = (present(dns).*look_up)(held); });
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
  const auto call = [&, dns = dns_] { found = (present(dns).*check)(address, domain, record, sender); };
  if (!console().attempt(ActivityRecord::Kind::component, text, Console::Step::read, call)) return false;
  // What decided is worth a line, though nothing was written.
  return component_step(text + ": " + found.reason, [] {}) && found.authorised;
}

}  // namespace zrl
