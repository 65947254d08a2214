#pragma once

#include <memory>
#include <span>
#include <string_view>

#include "core/page.h"

namespace zrl {

// What hosts know of a page without making it. Group and title are English and are translated by
// whoever shows them.
struct PageEntry {
  std::string_view name;
  std::string_view group;
  std::string_view title;
  std::unique_ptr<Page> (*make)(Console& console);
};

// All pages of the product, in the order of the sidebar.
std::span<const PageEntry> page_catalogue();

// The entry of this name in a catalogue, or null.
const PageEntry* find_page(std::span<const PageEntry> catalogue, std::string_view name);

template <typename PageType>
std::unique_ptr<Page> make_page(Console& console) {
  return std::make_unique<PageType>(console);
}

}  // namespace zrl
