#include "core/text/csv.h"

#include "core/text/utf8.h"

namespace zrl {

void append_csv(std::string& line, std::string_view cell) {
  if (!line.empty()) line += ',';
  line += '"';
  if (!cell.empty() && std::string_view("=+-@\t\r").find(cell.front()) != std::string_view::npos)
    line += '\'';
  for (const char c : valid_utf8(cell)) line.append(c == '"' ? 2 : 1, c);
  line += '"';
}

}  // namespace zrl
