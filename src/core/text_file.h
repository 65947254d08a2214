#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace zrl {

class Console;

// Writes a text file as a whole, in UTF-8; bytes of `text` that belong to no character become U+FFFD.
// `folder`, a product path (core/text/paths.h) that may end with a "\", is made if it is missing. An existing
// file is replaced at once or not at all. An empty folder makes the step fail, and so does a file name that
// is empty, "." or "..", or holds a separator or a zero byte: it might lead out of the folder. Recorded under
// the whole path as a write of the kind `file`. True if the step worked; never throws.
bool write_text_file(Console& console, std::string_view folder, std::string_view file_name,
                     std::string_view text);

// Writes `content`, byte for byte, to a file that did not exist, and returns its name; empty if that failed.
// `next_name` proposes names until one is free. The name is claimed before anything is written, so that no
// other process can have the same one; until the content is complete, the file is empty. Gives up after
// `most_names` names, and at once if a name cannot be one. Folder, record and errors are those of
// write_text_file().
inline constexpr int most_names = 1000;
std::string write_new_file(Console& console, std::string_view folder,
                           const std::function<std::string()>& next_name, std::string_view content);

}  // namespace zrl
