// Mail that is checked for keywords: a keyword is found exactly where a plain search finds it, and a
// subject is never longer than its header. The first line is the keyword.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "components/checks/subject_field.h"
#include "components/checks/text_index.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::string_view keyword = input.substr(0, input.find('\n'));
  const std::string_view text = input.substr(keyword.size());
  if (zrl::checks::TextIndex(std::string(text)).contains(keyword) != (text.find(keyword) != text.npos))
    std::abort();
  const std::string subject = zrl::checks::subject_of(text);
  if (subject.size() > text.size() || zrl::checks::longest_run_of_blanks(subject) > subject.size())
    std::abort();
  return 0;
}
