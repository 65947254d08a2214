#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace zrl {

// Pages, lists and scripts write paths with "\" ("product paths"). Returns the path of the file system for
// one of them, in which both "\" and "/" separate the parts, so that neither can be part of a name. Bytes
// are kept as they are; nothing is looked up or normalised.
std::filesystem::path to_file_path(std::string_view product_path);

// The inverse: "/" becomes "\".
std::string to_product_path(const std::filesystem::path& path);

// Whether `path` is `folder` or below it, by their parts alone: both must have been resolved before.
bool is_within(const std::filesystem::path& path, const std::filesystem::path& folder);

}  // namespace zrl
