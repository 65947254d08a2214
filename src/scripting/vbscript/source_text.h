#pragma once

#include <string>
#include <string_view>

namespace zrl::vbs {

// The text of a file, whatever editor wrote it.
struct SourceText {
  std::string text;  // UTF-8
  // The bytes were neither UTF-8 nor marked as UTF-16, and were read as Windows-1252.
  bool by_code_page = false;
};

// UTF-8, with or without its mark; UTF-16 of either byte order with its mark; else Windows-1252.
SourceText read_source(std::string_view bytes);

}  // namespace zrl::vbs
