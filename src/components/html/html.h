#pragma once

#include <memory>

#include "core/contracts/console_services.h"
#include "core/contracts/html_converter.h"

namespace zrl::html {

// A converter that keeps nothing between two texts.
//
// Blocks and table rows become lines, paragraphs and headings are set apart by an empty line, cells
// by a tab, list items begin with "* ". Entities are those of HTML 4. Time grows with the length of
// the text and no faster, whatever its nesting; memory is a few times the text's.
std::shared_ptr<HtmlConverter> make(ConsoleServices& console);

}  // namespace zrl::html
