#include "components/mail/mime_structure.h"

#include <algorithm>
#include <cstring>
#include <optional>

#include "core/text/text.h"

namespace zrl::mail {

namespace {

constexpr std::array<std::string_view, mime_field_count> field_names = {
    "from", "to", "subject", "content-type", "content-disposition", "content-transfer-encoding"};

bool is_blank(char c) {
  return c == ' ' || c == '\t';
}

// The name at the beginning of a line, if the line is a field (RFC 5322, sections 2.2 and 4.5).
std::optional<std::string_view> field_name(std::string_view line) {
  const auto is_in_name = [](char c) { return c > ' ' && c < '\x7F' && c != ':'; };
  const auto end = static_cast<std::size_t>(std::ranges::find_if_not(line, is_in_name) - line.begin());
  std::size_t colon = end;
  while (colon < line.size() && is_blank(line[colon])) ++colon;
  if (end == 0 || colon == line.size() || line[colon] != ':') return std::nullopt;
  return line.substr(0, end);
}

void append_bounded(std::string& value, std::string_view text) {
  value += text.substr(0, longest_field - std::min(longest_field, value.size()));
}

struct Boundary {
  std::string_view before;  // what lies before it, without the line end that belongs to it
  std::string_view after;
  bool closing = false;
};

// The rest of a line that begins with the boundary's text, if nothing else stands in it.
std::optional<Boundary> complete(std::string_view text, std::size_t begin, std::size_t length) {
  std::string_view after = text.substr(begin + length);
  std::string_view line = take_line(after);
  const bool closing = line.starts_with("--");
  if (closing) line.remove_prefix(2);
  if (!std::ranges::all_of(line, is_blank)) return std::nullopt;
  std::string_view before = text.substr(0, begin);
  if (before.ends_with('\n')) before.remove_suffix(1);
  if (before.ends_with('\r')) before.remove_suffix(1);
  return Boundary{before, after, closing};
}

// `marker` is the boundary with a line feed and two hyphens before it.
std::optional<Boundary> find_boundary(std::string_view text, const std::string& marker) {
  const std::string_view in_line = std::string_view(marker).substr(1);
  if (text.starts_with(in_line)) {
    if (const auto found = complete(text, 0, in_line.size())) return found;
  }
  std::size_t from = 0;
  while (from < text.size()) {
    const void* hit = ::memmem(text.data() + from, text.size() - from, marker.data(), marker.size());
    if (hit == nullptr) return std::nullopt;
    const auto begin = static_cast<std::size_t>(static_cast<const char*>(hit) - text.data()) + 1;
    if (const auto found = complete(text, begin, in_line.size())) return found;
    from = begin;
  }
  return std::nullopt;
}

}  // namespace

MimeEntity read_entity(std::string_view source) {
  MimeEntity entity;
  entity.body = source;
  std::string_view rest = source;
  std::string* open = nullptr;
  if (rest.starts_with("From ") && !field_name(rest.substr(0, rest.find('\n'))))
    take_line(rest);  // of a mailbox file
  for (bool first = true; !rest.empty(); first = false) {
    const std::string_view line = take_line(rest);
    if (line.empty()) break;
    if (is_blank(line.front()) && !first) {
      if (open != nullptr) append_bounded(*open, line);
      continue;
    }
    open = nullptr;
    const auto name = field_name(line);
    if (!name && first) return entity;
    if (!name) continue;
    const auto known = std::ranges::find_if(
        field_names, [&](std::string_view known_name) { return equals_ignoring_case(known_name, *name); });
    if (known == field_names.end()) continue;
    std::string& value = entity.fields[static_cast<std::size_t>(known - field_names.begin())];
    if (!value.empty()) continue;
    append_bounded(value, line.substr(line.find(':') + 1));
    open = &value;
  }
  entity.body = rest;
  return entity;
}

void for_each_part(std::string_view body, const std::string& boundary,
                   const std::function<bool(std::string_view part)>& visit) {
  const std::string marker = "\n--" + boundary;
  auto found = find_boundary(body, marker);
  while (found && !found->closing) {
    const std::string_view rest = found->after;
    found = find_boundary(rest, marker);
    if (!visit(found ? found->before : rest)) return;
  }
}

}  // namespace zrl::mail
