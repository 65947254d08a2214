// Filters of tables: any bytes are terms or a fault at a place within them, and the terms, written again, are
// the same terms.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "core/text/row_filter.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::string_view fields[] = {"from", "to", "ip", "reason"};
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto parsed = zrl::parse_filter(text, fields);
  if (const auto* fault = std::get_if<zrl::FilterFault>(&parsed)) {
    if (fault->column == 0 || fault->column > size + 1 || fault->text.empty()) std::abort();
    return 0;
  }
  const auto& terms = std::get<std::vector<zrl::FilterTerm>>(parsed);
  std::string written;
  for (const zrl::FilterTerm& term : terms) {
    written += (written.empty() ? "" : " ") + zrl::filter_term(term.field, term.value);
    if (zrl::like_pattern(term.value).find_first_of(std::string_view("'\0", 2)) != std::string::npos)
      std::abort();
  }
  const auto again = zrl::parse_filter(written, fields);
  const auto* same = std::get_if<std::vector<zrl::FilterTerm>>(&again);
  if (same == nullptr || same->size() != terms.size()) std::abort();
  for (std::size_t i = 0; i < terms.size(); ++i) {
    if ((*same)[i].field != terms[i].field || (*same)[i].value != terms[i].value) std::abort();
  }
  return 0;
}
