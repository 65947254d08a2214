#pragma once

#include <string>
#include <string_view>

namespace zrl {

class Console;

// Writes a text file as a whole, in US-ASCII: each character beyond it becomes "?". The folder, a
// path of the product that may end with a "\", is made if it is missing; an existing file is replaced
// at once or not at all. A file name that is no plain name, so that it might lead out of the folder,
// makes the step fail. Recorded as a write of the kind `file`; never throws.
bool write_text_file(Console& console, std::string_view folder, std::string_view file_name,
                     std::string_view text);

}  // namespace zrl
