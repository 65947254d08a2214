#include "core/page.h"

#include "core/text/error.h"
#include "core/text/text.h"

namespace zrl {

void Page::initialise() {
  run([this] { show(); });
}

void Page::terminate() {
  run([this] { hide(); });
  drop_database();
  dns_.reset();
}

void Page::show() {
  translate_controls();
  connect_database();
  load();
}

void Page::bind_switches(std::initializer_list<Switch> switches) {
  for (const Switch& bound : switches) {
    switch_keys_.emplace(&bound.box, bound.key);
    bound.box.on_click = [this, &box = bound.box, key = bound.key] { set_option(key, box.value()); };
  }
}

void Page::load_switch(CheckBox& box) {
  const std::string_view key = switch_keys_.at(&box);
  const std::optional<std::int16_t> value = read_number(key);
  if (!value) return;
  console().attempt(ActivityRecord::Kind::option, key, Console::Step::read, [&] { box.set_value(*value); });
}

void Page::load_switches(std::initializer_list<CheckBox*> boxes) {
  for (CheckBox* box : boxes) load_switch(*box);
}

void Page::publish_version() {
  set_string("version", settings().product_version());
}

void Page::fill(ListBox& box, Literal table, Literal column, const Statement& condition) {
  box.set_items(rows(table, column, condition).value_or(StringList()));
}

bool Page::run_program(std::string_view program, std::vector<std::string> operands, std::string_view folder) {
  ProgramStart start{std::string(program), std::move(operands), std::string(folder)};
  const std::string name = lower(program);
  if (!name.ends_with(".exe")) start.program += ".exe";
  return console().attempt(ActivityRecord::Kind::program, start.command_line(), Console::Step::write, [&] {
    for (const std::string& operand : start.operands) {
      if (operand.empty() || operand.front() == '-' || operand.find('\0') != std::string::npos) {
        throw Error(error_number::invalid_call, "this text cannot be passed to a program");
      }
    }
    console().host().start_program(start);
  });
}

StringList Page::mail_exchangers(std::string_view domain) {
  StringList found;
  const std::string text = "lookup_mx " + std::string(domain);
  console().attempt(ActivityRecord::Kind::component, text, Console::Step::read,
                    [&] { found = console().names().mail_exchangers(domain); });
  return found;
}

std::string Page::find_mail_exchanger(std::string_view domain) {
  const StringList exchangers = mail_exchangers(domain);
  return exchangers.empty() ? std::string() : std::string(exchangers[0]);
}

std::string Page::address_of(std::string_view host) {
  std::string address;
  const std::string text = "host_address " + std::string(host);
  console().attempt(ActivityRecord::Kind::component, text, Console::Step::read,
                    [&] { address = console().names().host_address(host); });
  return address;
}

// The page may be left, and the control that holds the address changed, while the event loop is
// served; the look-up holds its own.
std::optional<std::string> Page::host_name_of(std::string_view address) {
  std::optional<std::string> name;
  const std::string text = "PTR_Query " + std::string(address);
  console().attempt(ActivityRecord::Kind::component, text, Console::Step::read,
                    [&, dns = dns_, held = std::string(address)] {
                      if (!dns) throw Error(error_number::object_not_set, "no DNS component");
                      name = dns->PTR_Query(held);
                    });
  return name;
}

void Page::busy(Button& button, const std::function<void()>& action) {
  button.set_enabled(false);
  try {
    action();
  } catch (...) {
    console().record_escaped(button.name());
  }
  button.set_enabled(true);
}

void Page::process_events() {
  console().host().process_events();
}

}  // namespace zrl
