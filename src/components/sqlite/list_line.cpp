#include "components/sqlite/list_line.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

#include <arpa/inet.h>

#include "core/text/ascii.h"
#include "core/text/list_entry.h"
#include "core/text/text.h"

namespace zrl::sqlite {

namespace {

constexpr std::string_view blanks = " \t\r";

std::string_view first_word(std::string_view text) {
  return text.substr(0, text.find_first_of(blanks));
}

std::string_view without_comment(std::string_view text) {
  for (std::size_t mark = text.find('#', 1); mark != text.npos; mark = text.find('#', mark + 1)) {
    if (blanks.find(text[mark - 1]) != blanks.npos) return trim(text.substr(0, mark));
  }
  return text;
}

// An IPv6 address may name its interface: "fe80::1%lo0".
bool read_ipv6(std::string_view text, std::array<unsigned char, 16>& bytes) {
  const std::string address(text.substr(0, text.find('%')));
  return address.find(':') != address.npos && ::inet_pton(AF_INET6, address.c_str(), bytes.data()) == 1;
}

// The addresses that a hosts file gives to names that are to lead nowhere.
bool leads_nowhere(std::string_view address) {
  std::array<unsigned char, 16> bytes{};
  if (!read_ipv6(address, bytes)) return address == "0.0.0.0" || address.starts_with("127.");
  return std::all_of(bytes.begin(), bytes.end() - 1, [](unsigned char byte) { return byte == 0; }) &&
         bytes.back() <= 1;
}

bool is_address(std::string_view word) {
  std::array<unsigned char, 16> bytes{};
  return is_ip_address(word) || read_ipv6(word, bytes);
}

// The names that every hosts file has for the machine itself.
bool means_this_machine(std::string_view name) {
  constexpr std::string_view names[] = {
      "localhost",  "localhost.localdomain",   "localhost4", "localhost4.localdomain4",
      "localhost6", "localhost6.localdomain6", "local",      "broadcasthost"};
  constexpr std::string_view ipv6_names = "ip6-";
  return is_address(name) || equals_ignoring_case(name.substr(0, ipv6_names.size()), ipv6_names) ||
         std::any_of(std::begin(names), std::end(names),
                     [name](std::string_view known) { return equals_ignoring_case(name, known); });
}

}  // namespace

ListLine::ListLine(ListKind kind, std::string_view line) : rest_(trim(line)) {
  if (rest_.empty()) return;
  content_ = rest_.front() == '#' ? Content::comment : Content::entries;
  if (content_ == Content::comment) {
    rest_ = {};
  } else if (kind == ListKind::domains) {
    rest_ = without_comment(rest_);
    if (hex_value(rest_.front()) < 0 && rest_.front() != ':') return;
    const std::string_view address = first_word(rest_);
    if (address.size() < rest_.size() && is_address(address)) read_hosts_line(address);
  }
}

// Names with the address of another machine are no entries: they are in the file because they are used.
void ListLine::read_hosts_line(std::string_view address) {
  lists_names_ = true;
  rest_.remove_prefix(address.size());
  if (!leads_nowhere(address)) rest_ = {};
  ListLine ahead = *this;
  std::string_view name;
  if (!ahead.next(name)) content_ = Content::refused;
}

bool ListLine::next(std::string_view& entry) {
  while (!rest_.empty()) {
    entry = lists_names_ ? first_word(rest_) : rest_;
    rest_ = trim(rest_.substr(entry.size()));
    if (!lists_names_ || (!entry.empty() && !means_this_machine(entry))) return true;
  }
  return false;
}

}  // namespace zrl::sqlite
