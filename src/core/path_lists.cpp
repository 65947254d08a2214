#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <vector>

#include "core/console.h"
#include "core/contracts/console_folder.h"
#include "core/controls.h"
#include "core/form.h"
#include "core/text/paths.h"

namespace zrl {

namespace {

namespace fs = std::filesystem;

// The names in a folder for which `wanted` is true, sorted; empty where the folder cannot be read.
template <typename Predicate>
StringList names_in(const std::string& path, Predicate wanted) {
  std::error_code failure;
  std::vector<std::string> names;
  for (fs::directory_iterator entry(to_file_path(path), failure), end; !failure && entry != end;
       entry.increment(failure)) {
    std::error_code unreadable;
    if (wanted(*entry, unreadable)) names.push_back(entry->path().filename().string());
  }
  std::sort(names.begin(), names.end());
  StringList result;
  for (const std::string& name : names) result.push_back(name);
  return result;
}

// Leaves out what is the console's own (core/contracts/console_folder.h). Paths are resolved only where the
// answer can differ from that for the folder they are in.
class OwnFiles {
 public:
  OwnFiles(const Form& form, const fs::path& shown)
      : folder_(form.console().folder()), all_(console_folder::is_own(folder_, shown)) {}

  bool has_file(const fs::directory_entry& entry, std::error_code& failure) const {
    return entry.is_symlink(failure) ? console_folder::is_own(folder_, entry.path()) : all_;
  }
  // The console's folder itself is shown, because people's folders are in it.
  bool has_folder(const fs::directory_entry& entry, std::error_code& failure) const {
    return console_folder::is_own(folder_, entry.path()) && !fs::equivalent(entry.path(), folder_, failure);
  }

 private:
  const fs::path& folder_;
  bool all_;
};

}  // namespace

void PathList::set_path(std::string_view path) {
  if (path_ != path) {
    path_ = path;
    changed(Property::text);
  }
  put_items(read(path_));
}

PropertyValue PathList::own(Property property) const {
  if (property == Property::text) return std::string_view(path_);
  return ItemsControl::own(property);
}

void DriveList::user_choose(std::int64_t index) {
  require_item(index);
  set_path(std::string(items()[static_cast<std::size_t>(index)]));
  put_index(index);
  form().run(on_change);
}

StringList DriveList::read(const std::string&) const {
  StringList roots;
  roots.push_back("\\");
  const char* home = std::getenv("HOME");
  if (home != nullptr && *home == '/' && home[1] != '\0') roots.push_back(to_product_path(home));
  std::error_code failure;
  for (const char* place : {"/media", "/mnt", "/srv"}) {
    if (!fs::is_empty(place, failure) && !failure) roots.push_back(to_product_path(place));
  }
  return roots;
}

void FolderList::user_choose(std::int64_t index) {
  require_item(index);
  const std::string name(items()[static_cast<std::size_t>(index)]);
  const fs::path here = to_file_path(path()).lexically_normal();
  set_path(to_product_path(name == ".." ? here.parent_path() : here / name));
  form().run(on_change);
}

StringList FolderList::read(const std::string& path) const {
  StringList result;
  if (to_file_path(path).has_relative_path()) result.push_back("..");
  const OwnFiles own(form(), to_file_path(path));
  const StringList folders = names_in(path, [&](const fs::directory_entry& entry, std::error_code& ec) {
    return entry.is_directory(ec) && !own.has_folder(entry, ec);
  });
  for (std::size_t i = 0; i < folders.size(); ++i) result.push_back(folders[i]);
  return result;
}

void FileList::user_choose(std::int64_t index) {
  require_item(index);
  put_index(index);
  form().run(on_click);
}

StringList FileList::read(const std::string& path) const {
  const OwnFiles own(form(), to_file_path(path));
  return names_in(path, [&](const fs::directory_entry& entry, std::error_code& ec) {
    return entry.is_regular_file(ec) && !own.has_file(entry, ec);
  });
}

}  // namespace zrl
