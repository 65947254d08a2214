#pragma once

#include <memory>
#include <span>
#include <string_view>

#include "core/page.h"

namespace zrl {

// What hosts know of a page without making it. The texts live as long as the program. Group and title are
// English; the host that shows them translates them.
struct PageEntry {
  std::string_view name;  // unique, for machines: the command line and the web protocol
  std::string_view group;
  std::string_view title;
  // Makes the page, which the caller owns and shows. The console must outlive it. Makes no component and
  // reads nothing before it is shown.
  std::unique_ptr<Page> (*make)(Console& console);
};

// All pages of the product, in the order of the sidebar; pages of a group are adjacent. Lives as long as the
// program, and may be read from any thread.
std::span<const PageEntry> page_catalogue();

// The entry with this name, compared exactly, or null. The result points into `catalogue`.
const PageEntry* find_page(std::span<const PageEntry> catalogue, std::string_view name);

// For tables of pages: the `make` of a page class.
template <typename PageType>
std::unique_ptr<Page> make_page(Console& console) {
  return std::make_unique<PageType>(console);
}

}  // namespace zrl
