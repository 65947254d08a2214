#pragma once

#include <memory>

#include "core/contracts/console_services.h"
#include "core/contracts/html_converter.h"

namespace zrl::html {

// A converter without state: one object may convert any number of texts, and may outlive the console, which
// it does not use. Bytes of the input that are no UTF-8 become U+FFFD.
//
// Blocks and table rows become lines; an empty line separates paragraphs and headings, and a tab the cells of
// a row; list items begin with "* ". Named entities are those of HTML 4. No HTML is an error: markup is
// hostile and often broken, so it is read as browsers read it. Time is linear in the length of the text,
// whatever its nesting, and memory a small multiple of it.
std::shared_ptr<HtmlConverter> make(ConsoleServices& console);

}  // namespace zrl::html
