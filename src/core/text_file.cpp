#include "core/text_file.h"

#include <filesystem>

#include "core/console.h"
#include "core/text/error.h"
#include "core/text/files.h"
#include "core/text/paths.h"
#include "core/text/utf8.h"

namespace zrl {

namespace {

constexpr int bad_file_name = 52;
constexpr int path_not_found = 76;

bool is_plain_name(std::string_view name) {
  constexpr std::string_view separators("/\\\0", 3);
  return !name.empty() && name != "." && name != ".." && name.find_first_of(separators) == name.npos;
}

}  // namespace

bool write_text_file(Console& console, std::string_view folder, std::string_view file_name,
                     std::string_view text) {
  std::string path(folder);
  if (!path.ends_with('\\') && !path.ends_with('/')) path += '\\';
  path += file_name;
  const std::filesystem::path target = to_file_path(path);
  console.writes().commit();
  return console.attempt(ActivityRecord::Kind::file, target.string(), Console::Step::write, [&] {
    if (folder.empty()) throw Error(path_not_found, "Path not found");
    if (!is_plain_name(file_name)) throw Error(bad_file_name, "Bad file name");
    std::filesystem::create_directories(target.parent_path());
    replace_file(target, to_us_ascii(text));
  });
}

}  // namespace zrl
