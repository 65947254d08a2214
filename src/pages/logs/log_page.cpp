#include "pages/logs/log_page.h"

#include "core/error.h"
#include "core/text.h"

namespace zrl {

void LogPage::set_status(Literal table, IpStatus status, std::string_view address) {
  const std::string digit = std::to_string(static_cast<int>(status));
  execute("UPDATE " + table + " set status=" + number(digit) + " where IPNumber='" + value(address) + "'");
}

void LogPage::list_address(IpStatus status, std::string_view address) {
  switch (status) {
    case IpStatus::neutral:
      remove_from_iplist(address);
      break;
    case IpStatus::white:
      add_to_whitehost(address);
      break;
    case IpStatus::black:
      add_to_blackhost(address);
      break;
  }
}

void LogPage::delete_rows(std::initializer_list<Literal> tables, Literal column, std::string_view text) {
  for (const Literal table : tables) execute(delete_from(table, column, text));
}

void LogPage::blacklist_domain(std::string_view domain) {
  const std::string_view entry = trim(domain);
  if (entry.empty()) return;
  execute(delete_from("whitelist", "entry", entry));
  execute(insert_into("blacklist", "entry", entry));
}

void LogPage::whitelist_domain(std::string_view domain) {
  const std::string_view entry = trim(domain);
  if (entry.empty()) return;
  execute(delete_from("blacklist", "entry", entry));
  execute(insert_into("whitelist", "entry", entry));
}

void LogPage::unlist_domain(std::string_view domain) {
  const std::string_view entry = trim(domain);
  if (entry.empty()) return;
  execute(delete_from("whitelist", "entry", entry));
  execute(delete_from("blacklist", "entry", entry));
}

void LogPage::connect_by_telnet(const std::string& target) {
  run_program("telnet.exe", {target, "25"});
}

std::optional<std::string> LogPage::host_name_of(std::string_view address) {
  std::optional<std::string> name;
  const std::string text = "PTR_Query " + std::string(address);
  console().attempt(ActivityRecord::Kind::component, text, Console::Step::read, [&] {
    if (!dns_) throw Error(error_number::object_not_set, "no DNS component");
    name = dns_->PTR_Query(address);
  });
  return name;
}

void LogPage::show_count(Label& label, Literal select) {
  if (const auto count = count_value(select)) label.set_caption(std::to_string(*count));
}

void LogPage::select(ListBox& box, std::int64_t index) {
  if (index < static_cast<std::int64_t>(box.items().size())) box.set_index(index);
}

}  // namespace zrl
