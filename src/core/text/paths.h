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

}  // namespace zrl
