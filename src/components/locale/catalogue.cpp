#include "components/locale/catalogue.h"

#include "core/text/error.h"
#include "core/text/text.h"

namespace zrl::locale {

namespace {

[[noreturn]] void fail(std::size_t line, const std::string& what) {
  throw Error(1, "message catalogue, line " + std::to_string(line) + ": " + what);
}

// The content of a quoted string, `"like \"this\"\n"`.
std::string unquoted(std::string_view text, std::size_t line) {
  text = trim(text);
  if (text.size() < 2 || text.front() != '"' || text.back() != '"') fail(line, "a quoted string is missing");
  text = text.substr(1, text.size() - 2);
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\') {
      result += text[i];
      continue;
    }
    if (++i == text.size()) fail(line, "a backslash ends the string");
    constexpr std::string_view letters = "nrt\"\\";
    constexpr std::string_view meanings = "\n\r\t\"\\";
    const std::size_t found = letters.find(text[i]);
    if (found == letters.npos) fail(line, "unknown escape");
    result += meanings[found];
  }
  return result;
}

}  // namespace

Catalogue Catalogue::parse(std::string_view po_text) {
  Catalogue catalogue;
  std::string id;
  std::string translation;
  std::string* current = nullptr;
  std::size_t line_number = 0;
  const auto finish_entry = [&] {
    if (current == &translation) catalogue.add(std::move(id), std::move(translation));
    id.clear();
    translation.clear();
    current = nullptr;
  };
  while (!po_text.empty()) {
    ++line_number;
    const std::size_t end = po_text.find('\n');
    const std::string_view line = trim(po_text.substr(0, end));
    po_text.remove_prefix(end == po_text.npos ? po_text.size() : end + 1);
    if (line.empty() || line[0] == '#') continue;
    if (line.starts_with("msgid ")) {
      finish_entry();
      current = &id;
      id = unquoted(line.substr(6), line_number);
    } else if (line.starts_with("msgstr ")) {
      if (current != &id) fail(line_number, "msgstr without msgid");
      current = &translation;
      translation = unquoted(line.substr(7), line_number);
    } else if (line[0] == '"' && current != nullptr) {
      *current += unquoted(line, line_number);
    } else {
      fail(line_number, "neither msgid nor msgstr nor a string");
    }
  }
  finish_entry();
  return catalogue;
}

std::string Catalogue::translate(std::string_view text) const {
  const auto found = texts_.find(text);
  if (found != texts_.end()) return found->second;
  const Prefix* prefix = prefix_of(text);
  if (prefix == nullptr) return std::string(text);
  return prefix->before + std::string(text.substr(prefix->begin.size())) + prefix->after;
}

bool Catalogue::has(std::string_view text) const {
  return texts_.contains(text) || prefix_of(text) != nullptr;
}

const Catalogue::Prefix* Catalogue::prefix_of(std::string_view text) const {
  for (const Prefix& prefix : prefixes_) {
    if (text.starts_with(prefix.begin)) return &prefix;
  }
  return nullptr;
}

void Catalogue::add(std::string id, std::string text) {
  if (id.empty() || text.empty()) return;  // the header entry, or a text not yet translated
  const std::size_t star = text.find('*');
  if (id.back() == '*' && star != text.npos) {
    id.pop_back();
    prefixes_.push_back({std::move(id), text.substr(0, star), text.substr(star + 1)});
  } else {
    texts_.insert_or_assign(std::move(id), std::move(text));
  }
}

}  // namespace zrl::locale
