#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace zrl {

// Paths inside the product are written with "\". A path of the file system for one of them: both
// "\" and "/" separate its parts.
std::filesystem::path to_file_path(std::string_view product_path);

// The other way: "/" becomes "\".
std::string to_product_path(const std::filesystem::path& path);

// Writes the file as a whole: a temporary file beside it, flushed to the disk, then renamed over
// it, never readable by others than `mode` allows. Raises zrl::Error; then the old file is as it
// was.
void replace_file(const std::filesystem::path& path, std::string_view content, unsigned mode = 0644);

// Makes the names in a folder survive a power cut, where the file system can do that.
void flush_folder(const std::filesystem::path& folder);

// The content of a file; raises zrl::Error if it cannot be read or is larger than `limit` bytes.
std::string read_file(const std::filesystem::path& path, std::size_t limit = std::size_t{1} << 20);

}  // namespace zrl
