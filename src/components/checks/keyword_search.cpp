#include "components/checks/keyword_search.h"

#include "core/text/error.h"
#include "core/text/list_entry.h"
#include "core/text/text.h"
#include "core/text/utf8.h"

namespace zrl::checks {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t longest_text = std::size_t{16} << 20;
constexpr std::size_t longest_answer = 200;

std::string shortened(std::string_view text) {
  return valid_utf8(text.substr(0, longest_answer)) + (text.size() > longest_answer ? "..." : "");
}

}  // namespace

KeywordSearch::KeywordSearch(std::string_view text, ConsoleServices& console,
                             std::chrono::milliseconds longest)
    : text_(text.substr(0, longest_text)), index_(lower(text_)), console_(console), longest_(longest) {}

std::string KeywordSearch::find(const StringList& entries) const {
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const std::string_view entry = entries[i];
    if (entry.empty() || is_regex_entry(entry)) continue;
    if (index_.contains(keyword_text(entry))) return shortened(entry);
  }
  return find_regex(entries);
}

std::string KeywordSearch::find_regex(const StringList& entries) const {
  const Clock::time_point deadline = Clock::now() + longest_;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const std::string_view entry = entries[i];
    if (!is_regex_entry(entry)) continue;
    if (Clock::now() > deadline) {
      throw Error(error_number::invalid_call,
                  "the regular expressions took too long from " + shortened(entry) + " on");
    }
    const std::string found = console_.regex_match(entry, text_);
    if (!found.empty()) return shortened(entry) + " (" + shortened(found) + ")";
  }
  return {};
}

}  // namespace zrl::checks
