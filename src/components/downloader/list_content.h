#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "core/contracts/list_tables.h"

namespace zrl::downloader {

// Looks at a list file while it arrives, because servers send error pages, log-in pages and compressed files
// in place of lists, under any type. The errors say for people why the content is no list. A few hundred
// bytes are kept, whatever the size.
class ListContent {
 public:
  explicit ListContent(ListKind kind) : kind_(kind) {}

  // The next bytes. Raises zrl::Error for a control character other than a tab or a line end, for a line
  // that no import would read, and for a web page, XML or JSON. In lists of texts, whose entries may begin
  // with a bracket, those are recognised by what follows it.
  void take(std::string_view bytes);
  // After the last byte. Raises what could not be known before.
  void finish();

 private:
  void count(char byte);
  void keep(char byte);
  void end_line();
  void check_beginning();

  ListKind kind_;
  bool beginning_is_checked_ = false;
  std::size_t mark_length_ = 0;  // of the byte-order mark, as far as it has come
  std::string beginning_;        // without the mark and blanks
  std::string end_;
  std::uint64_t line_number_ = 1;
  std::size_t line_length_ = 0;
  char last_ = '\n';
};

}  // namespace zrl::downloader
