#pragma once

#include <string>
#include <string_view>

namespace zrl {

class Console;

// Writes a text file as a whole. `text` is UTF-8, the file US-ASCII: each character beyond it becomes "?".
// `folder`, a product path (core/text/paths.h) that may end with a "\", is made if it is missing. An existing
// file is replaced at once or not at all. An empty folder makes the step fail, and so does a file name that
// is empty, "." or "..", or holds a separator or a zero byte: it might lead out of the folder. Recorded under
// the whole path as a write of the kind `file`. True if the step worked; never throws.
bool write_text_file(Console& console, std::string_view folder, std::string_view file_name,
                     std::string_view text);

}  // namespace zrl
