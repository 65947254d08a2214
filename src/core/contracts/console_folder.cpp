#include "core/contracts/console_folder.h"

#include <algorithm>
#include <system_error>

#include "core/text/paths.h"

namespace zrl::console_folder {

namespace fs = std::filesystem;

fs::path lists(const fs::path& folder) {
  return folder / "lists";
}

fs::path downloads(const fs::path& folder) {
  return folder / "download";
}

fs::path uploads(const fs::path& folder) {
  return folder / "upload";
}

fs::path archive(const fs::path& folder) {
  return folder / "archive";
}

fs::path scripts(const fs::path& folder) {
  return folder / "scripts";
}

fs::path secrets(const fs::path& folder) {
  return folder / "secrets";
}

bool is_own(const fs::path& folder, const fs::path& path) {
  std::error_code failure;
  const fs::path whole = fs::weakly_canonical(fs::absolute(folder, failure), failure);
  const fs::path target = failure ? fs::path() : fs::weakly_canonical(fs::absolute(path, failure), failure);
  if (failure) return true;
  if (!is_within(target, whole)) return false;
  const fs::path for_people[] = {lists(whole), downloads(whole), uploads(whole), archive(whole)};
  return std::none_of(std::begin(for_people), std::end(for_people),
                      [&](const fs::path& part) { return is_within(target, part); });
}

}  // namespace zrl::console_folder
