#include "core/page.h"

#include <algorithm>

#include "core/text/error.h"
#include "core/text/text.h"

namespace zrl {

void Page::initialise() {
  // Lists are filled by the showing; on a page that was shown before they would be doubled.
  for (Control* control : controls()) {
    if (control->kind() == ControlKind::list_box) static_cast<ListBox*>(control)->clear();
    if (control->kind() == ControlKind::combo_box) static_cast<ComboBox*>(control)->set_items({});
  }
  run([this] {
    const Acts::Routine routine(console().acts());
    show();
  });
}

void Page::show_query(std::string_view query) {
  set_query(query);
  if (!query.empty()) run([this, held = std::string(query)] { open_query(held); });
}

void Page::open_query(std::string_view) {}

void Page::terminate() {
  run([this] { hide(); });
  drop_database();
  for (HeldComponent* held : held_) held->drop();
}

void Page::show() {
  translate_controls();
  connect_database();
  load();
}

void Page::bind_switches(std::initializer_list<Switch> switches) {
  for (const Switch& bound : switches) {
    switches_.push_back(bound);
    bound.box.on_click = [this, &box = bound.box, key = bound.key] {
      const bool on = box.checked();
      set_option(key, box.value());
      say_switched(box, on);
    };
  }
}

void Page::load_switches() {
  for (const Switch& bound : switches_) load_switch(bound.box);
}

void Page::load_switches(std::initializer_list<CheckBox*> boxes) {
  for (CheckBox* box : boxes) load_switch(*box);
}

void Page::load_switch(CheckBox& box) {
  const auto bound = std::ranges::find(switches_, &box, [](const Switch& one) { return &one.box; });
  const std::optional<std::int16_t> value = read_number(bound->key);
  if (value) console().attempt(Kind::option, bound->key, Step::read, [&] { box.set_value(*value); });
}

void Page::when_not_stored(std::string_view key, std::function<void()> show) {
  shown_options_.push_back({key, std::move(show)});
}

void Page::not_stored(std::string_view key) {
  for (const Switch& bound : switches_) {
    if (bound.key == key) load_switch(bound.box);
  }
  for (const ShownOption& shown : shown_options_) {
    if (shown.key == key) shown.show();
  }
}

void Page::bind_text(TextField& field, std::string_view key) {
  shown_texts_.push_back({field, key});
}

void Page::show_newer(std::string_view key) {
  for (const ShownText& shown : shown_texts_) {
    if (shown.key != key) continue;
    if (const auto stored = read_string(key)) shown.field.set_text(*stored);
  }
  not_stored(key);
}

std::string Page::name_of_option(std::string_view key) {
  for (const ShownText& shown : shown_texts_) {
    if (shown.key == key) return label_of(shown.field);
  }
  return std::string(key);
}

void Page::load_registry_switch(CheckBox& box, std::string_view path) {
  const OptionValue value{settings().regread(path)};
  console().attempt(Kind::registry, path, Step::read, [&] { box.set_value(value.to_int16()); });
}

void Page::set_interval(Timer& timer, std::string_view key, std::int64_t interval_ms) {
  console().attempt(Kind::option, key, Step::read, [&] { timer.set_interval(interval_ms); });
}

void Page::publish_version() {
  const Acts::Routine routine(console().acts());
  set_string("version", settings().product_version());
}

bool Page::run_program(std::string_view program, std::vector<std::string> operands, std::string_view folder) {
  ProgramStart start{std::string(program), std::move(operands), std::string(folder)};
  const std::string name = lower(program);
  if (!name.ends_with(".exe")) start.program += ".exe";
  return console().attempt(Kind::program, start.command_line(), Step::write, [&] {
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
  console().attempt(Kind::component, text, Step::read,
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
  console().attempt(Kind::component, text, Step::read,
                    [&] { address = console().names().host_address(host); });
  return address;
}

std::optional<std::string> Page::host_name_of(const Held<DnsClient>& dns, std::string_view address) {
  std::optional<std::string> name;
  ask(dns, "PTR_Query " + std::string(address),
      [&, held = std::string(address)](DnsClient& client) { name = client.PTR_Query(held); });
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

void Page::bind_busy(Button& button, std::function<void()> action) {
  button.on_click = [this, &button, action = std::move(action)] { busy(button, action); };
}

void Page::process_events() {
  console().host().process_events();
}

}  // namespace zrl
