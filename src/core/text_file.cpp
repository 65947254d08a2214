#include "core/text_file.h"

#include <cerrno>
#include <filesystem>

#include <fcntl.h>
#include <unistd.h>

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

// A product path, ended by a separator.
std::string folder_path(std::string_view folder) {
  std::string path(folder);
  if (!path.ends_with('\\') && !path.ends_with('/')) path += '\\';
  return path;
}

void prepare(std::string_view folder, std::string_view file_name, const std::filesystem::path& target) {
  if (folder.empty()) throw Error(path_not_found, "Path not found");
  if (!is_plain_name(file_name)) throw Error(bad_file_name, "Bad file name");
  std::filesystem::create_directories(target.parent_path());
}

// Makes an empty file; false if there is one of that name.
bool claim(const std::filesystem::path& path) {
  const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
  if (file < 0 && errno == EEXIST) return false;
  if (file < 0) raise_file_error(path, errno);
  ::close(file);
  return true;
}

}  // namespace

bool write_text_file(Console& console, std::string_view folder, std::string_view file_name,
                     std::string_view text) {
  const std::filesystem::path target = to_file_path(folder_path(folder) + std::string(file_name));
  console.writes().commit();
  return console.attempt(ActivityRecord::Kind::file, target.string(), Console::Step::write, [&] {
    prepare(folder, file_name, target);
    replace_file(target, valid_utf8(text));
  });
}

std::string write_new_file(Console& console, std::string_view folder,
                           const std::function<std::string()>& next_name, std::string_view content) {
  std::string name;
  std::filesystem::path target;
  console.writes().commit();
  const bool claimed = console.attempt(ActivityRecord::Kind::file, folder, Console::Step::read, [&] {
    int left = most_names;
    do {
      if (left-- == 0) raise_file_error(target, EEXIST);
      name = next_name();
      target = to_file_path(folder_path(folder) + name);
      prepare(folder, name, target);
    } while (!claim(target));
  });
  if (!claimed) return {};
  const bool written =
      console.attempt(ActivityRecord::Kind::file, target.string(), Console::Step::write, [&] {
        try {
          replace_file(target, content);
        } catch (...) {
          ::unlink(target.c_str());
          throw;
        }
      });
  return written ? name : std::string();
}

}  // namespace zrl
