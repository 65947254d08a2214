#pragma once

#include <cstdint>
#include <string_view>

#include "core/contracts/list_tables.h"

namespace zrl::sqlite {

// A line of a list file, taken apart by the rules for the list's kind, which core/contracts/database.h
// states. Views point into the line, which the caller keeps.
class ListLine {
 public:
  enum class Content : std::uint8_t { nothing, comment, refused, entries };

  ListLine() = default;
  // The line comes without its end.
  ListLine(ListKind kind, std::string_view line);

  Content content() const { return content_; }
  // The next entry of the line; false after the last one, and if there is none.
  bool next(std::string_view& entry);

 private:
  void read_hosts_line(std::string_view address);

  std::string_view rest_;
  bool lists_names_ = false;
  Content content_ = Content::nothing;
};

}  // namespace zrl::sqlite
