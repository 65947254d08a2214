#pragma once

#include <functional>
#include <memory>

#include "core/contracts/html_converter.h"

namespace zrl {

// Makes converters that keep nothing between two texts.
//
// Blocks and table rows become lines, paragraphs and headings are set apart by an empty line, cells
// by a tab, list items begin with "* ". Entities are those of HTML 4. Time grows with the length of
// the text and no faster, whatever its nesting; memory is a few times the text's.
std::function<std::shared_ptr<HtmlConverter>()> make_html_converter_factory();

}  // namespace zrl
