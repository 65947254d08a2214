#pragma once

#include <span>
#include <string_view>

namespace zrl::web {

// A file of the front end, built into the program. All views live as long as the program.
struct Asset {
  std::string_view path;  // "/index.html"
  std::string_view content_type;
  std::string_view bytes;
  std::string_view gzipped;  // empty if that is not smaller
  bool immutable;            // its name contains a digest of its content
};

// Sorted by path.
std::span<const Asset> built_in_assets();

}  // namespace zrl::web
