#include "scripting/folder_script_files.h"

#include <system_error>

#include "core/text/error.h"
#include "core/text/files.h"
#include "core/text/paths.h"

namespace zrl {

namespace {

constexpr int out_of_memory = 7;
constexpr int file_not_found = 53;
constexpr int permission_denied = 70;

}  // namespace

std::filesystem::path FolderScriptFiles::place_of(const std::string& path) const {
  if (path.find('\0') != path.npos) return {};
  std::error_code failed;
  const std::filesystem::path root = std::filesystem::canonical(folder_, failed);
  if (failed) return {};
  const std::filesystem::path place = std::filesystem::weakly_canonical(root / to_file_path(path), failed);
  if (failed) return {};
  return is_within(place, root) ? place : std::filesystem::path();
}

bool FolderScriptFiles::file_exists(const std::string& path) {
  std::error_code failed;
  const std::filesystem::path place = place_of(path);
  return !place.empty() && std::filesystem::is_regular_file(place, failed);
}

bool FolderScriptFiles::folder_exists(const std::string& path) {
  std::error_code failed;
  const std::filesystem::path place = place_of(path);
  return !place.empty() && std::filesystem::is_directory(place, failed);
}

std::string FolderScriptFiles::contents(const std::string& path) {
  std::error_code failed;
  const std::filesystem::path place = place_of(path);
  if (place.empty()) throw vbs::ServiceError{permission_denied, {}};
  if (!std::filesystem::is_regular_file(place, failed)) throw vbs::ServiceError{file_not_found, {}};
  if (std::filesystem::file_size(place, failed) > largest || failed) {
    throw vbs::ServiceError{out_of_memory, {}};
  }
  try {
    return read_file(place, largest);
  } catch (const Error&) {
    throw vbs::ServiceError{permission_denied, {}};
  }
}

}  // namespace zrl
