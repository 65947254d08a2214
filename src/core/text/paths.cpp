#include "core/text/paths.h"

#include <algorithm>

namespace zrl {

std::filesystem::path to_file_path(std::string_view product_path) {
  std::string path(product_path);
  std::replace(path.begin(), path.end(), '\\', '/');
  return path;
}

std::string to_product_path(const std::filesystem::path& path) {
  std::string result = path.string();
  std::replace(result.begin(), result.end(), '/', '\\');
  return result;
}

bool is_within(const std::filesystem::path& path, const std::filesystem::path& folder) {
  return std::mismatch(folder.begin(), folder.end(), path.begin(), path.end()).first == folder.end();
}

}  // namespace zrl
