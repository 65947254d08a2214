#include "service/service_control_page.h"

#include <array>

#include "core/list_changes.h"
#include "core/text/error.h"
#include "core/text/text.h"

namespace zrl {

namespace {

// A text with an IPv4 address somewhere in it.
constexpr std::string_view holds_ip_number =
    R"(REGEX[\b((25[0-5]|2[0-4]\d|[01]\d\d|\d?\d)\.){3}(25[0-5]|2[0-4]\d|[01]\d\d|\d?\d)\b])";

// How many times in a row the timer asks for the service without an answer before it takes an order for done.
constexpr int most_unanswered = 20;

constexpr Sentence addresses_stored{"Addresses and ports stored", "Addresses and ports not stored"};
constexpr Sentence started{"The service is being started", "The service was not started"};
constexpr Sentence manager_started{"The service's own manager has been started",
                                   "The service's own manager was not started"};
constexpr Sentence stopped{"The service is being stopped", "The service was not stopped"};

bool is_missing(const TextField& port) {
  return port.text() == "-1" || port.text().empty();
}

}  // namespace

ServiceControlPage::ServiceControlPage(Console& console)
    : Page(console, "ServiceControl", "Service control") {
  dontstartproxy.on_click = [this] { store_start_switch(); };
  when_not_stored("dontstartproxy", [this] { load_start_switch(); });
  Command1.on_click = [this] { save(); };
  Command2.on_click = [this] {
    if (!refresh_status()) say_failed("The state of the service is not known");
  };
  Command3.on_click = [this] {
    run_program("ProxyServiceControl.exe", {});
    say(manager_started);
  };
  starts.on_click = [this] {
    dontstartproxy.set_checked(true);
    store_start_switch();
    begin(Pending::start, "StartService", &ServiceManager::start);
  };
  stopservice.on_click = [this] { begin(Pending::none, "StopService", &ServiceManager::stop); };
  rservice.on_click = [this] { begin(Pending::restart, "StopService", &ServiceManager::stop); };
  Timer1.on_tick = [this] { follow_service(); };

  bind_text(Text1, "forwardaddress");
  bind_text(listenip, "listenip");
  bind_text(Text2, "listenport");
  bind_text(Text3, "forwardport");
  Text1.set_expects(expects::host);
  listenip.set_expects(expects::ip_number);
  for (TextField* port : {&Text2, &Text3}) port->set_expects(expects::port);

  Command1.set_primary();
  stopservice.set_destroys(loss::service);

  set_layout(column({
      frame(Frame3, column({Label1, Label2, row({starts, stopservice, rservice, Command2, Command3}),
                            grid({dontstartproxy})})),
      frame(Frame1, grid({Text1, Text3})),
      frame(Frame2, grid({listenip, Text2})),
      row({Command1}),
  }));
}

void ServiceControlPage::load() {
  load_fields();
  load_start_switch();
  services_.make();
  refresh_status();
}

void ServiceControlPage::load_fields() {
  if (const auto address = read_string("forwardaddress")) Text1.set_text(*address);
  if (const auto address = read_string("listenip")) listenip.set_text(*address);
  load_listen();
  load_forward();
}

void ServiceControlPage::load_listen() {
  if (const auto port = read_option("listenport")) Text2.set_text(port->text);
  if (!is_missing(Text2)) return;
  execute("DELETE FROM konf where ID='listenport'");
  Text2.set_text("25");
  store_number<std::int32_t>("listenport", Text2.text());
}

void ServiceControlPage::load_forward() {
  if (const auto port = read_option("forwardport")) Text3.set_text(port->text);
  if (!is_missing(Text3)) return;
  execute("DELETE FROM konf where ID='forwardport'");
  const bool same_address = !Text1.text().empty() && listenip.text() == Text1.text();
  Text3.set_text(same_address ? "26" : "25");
  store_number<std::int32_t>("forwardport", Text3.text());
}

void ServiceControlPage::load_start_switch() {
  if (const auto prevented = read_number("dontstartproxy")) dontstartproxy.set_checked(*prevented < 1);
}

// A value that gave way to a newer one is shown by then; one that waits for the person stays as it was typed.
void ServiceControlPage::save() {
  const bool forward = may_replace("forwardaddress", Text1.text());
  const bool listen_port = may_replace("listenport", Text2.text());
  const bool forward_port = may_replace("forwardport", Text3.text());
  if (forward && !Text1.text().empty()) {
    set_string("forwardaddress", Text1.text());
    add_to_whitehost(Text1.text());
    run_entry_steps(*this, std::array{take_off(list::local_addresses), put_on(list::local_addresses)},
                    Text1.text());
  }
  if (!console().regex_match(holds_ip_number, listenip.text()).empty()) {
    set_string("listenip", listenip.text());
  }
  if (listen_port) execute("DELETE FROM konf where ID='listenport'");
  if (forward_port) execute("DELETE FROM konf where ID='forwardport'");
  if (listen_port && !Text2.text().empty()) store_number<std::int32_t>("listenport", Text2.text());
  if (forward_port && !Text3.text().empty()) store_number<std::int32_t>("forwardport", Text3.text());
  if (!forward || !listen_port || !forward_port) return;
  say(addresses_stored);
  load_fields();
}

// The option has the opposite meaning of the box.
void ServiceControlPage::store_start_switch() {
  const bool on = dontstartproxy.checked();
  set_option("dontstartproxy", on ? 0 : 1);
  say_switched(dontstartproxy, on);
}

void ServiceControlPage::begin(Pending pending, std::string_view name, ServiceCall call) {
  pending_ = pending;
  unanswered_ = 0;
  give_order(name, call);
  refresh_status();
  Timer1.set_enabled(true);
}

void ServiceControlPage::give_order(std::string_view name, ServiceCall call) {
  const std::string service = settings().product_key();
  order(services_, std::string(name) + " " + service,
        [&](ServiceManager& manager) { (manager.*call)(service); });
  say(name == "StartService" ? started : stopped);
}

// Nothing if the service manager did not answer.
std::optional<ServiceState> ServiceControlPage::refresh_status() {
  const std::string service = settings().product_key();
  std::optional<ServiceState> answer;
  ask(services_, "service_state " + service, [&](ServiceManager& manager) {
    answer = manager.inspect(service);
    if (answer->status.empty()) throw Error(ServiceManager::no_such_service, "no such service: " + service);
  });
  const ServiceState shown = answer.value_or(ServiceState());
  Label1.set_caption(translate("Service Status: ") + shown.status);
  Label2.set_caption(translate("Service State: ") + shown.state);
  offer_orders(shown);
  return answer;
}

// A running service can be stopped, another one started. While it is on its way, or not known, everything can
// be ordered.
void ServiceControlPage::offer_orders(const ServiceState& service) {
  const bool known = !service.status.empty();
  const bool settled = known && service.checkpoint == 0;
  const bool runs = service.status == "active";
  starts.set_enabled(!settled || !runs);
  for (Button* order : {&stopservice, &rservice}) order->set_enabled(!settled || runs);
  const Label::Tone settled_tone = runs ? Label::Tone::good : Label::Tone::bad;
  const Label::Tone tone = settled ? settled_tone : known ? Label::Tone::waiting : Label::Tone::plain;
  for (Label* label : {&Label1, &Label2}) label->set_tone(tone);
}

// Stops after some time without an answer: where the manager is gone, the timer would fill the record
// forever.
void ServiceControlPage::follow_service() {
  const auto answer = refresh_status();
  unanswered_ = answer ? 0 : unanswered_ + 1;
  if (answer ? answer->checkpoint != 0 : unanswered_ < most_unanswered) return;
  Timer1.set_enabled(false);
  if (pending_ != Pending::restart) return;
  give_order("StartService", &ServiceManager::start);
  refresh_status();
}

}  // namespace zrl
