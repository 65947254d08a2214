#pragma once

#include <filesystem>

// What lies where in the console's own folder, whose path is the first argument throughout: the one place
// that knows which files are the console's alone.
namespace zrl::console_folder {

// Where list files are exported to and read from, unless somebody chooses another folder.
std::filesystem::path lists(const std::filesystem::path& folder);
// The good copies of the list files that the update server published.
std::filesystem::path downloads(const std::filesystem::path& folder);
// What browsers sent.
std::filesystem::path uploads(const std::filesystem::path& folder);
std::filesystem::path archive(const std::filesystem::path& folder);
std::filesystem::path scripts(const std::filesystem::path& folder);
// What is not shared with the proxy: accounts, audit log and whatever else grants or shows what people do.
// Nobody but the console's own account may enter it.
std::filesystem::path secrets(const std::filesystem::path& folder);

// Whether the console relies on what is at `path`: it lies in the folder, but in none of the sub-folders
// that are for people's files (lists, downloads, uploads, archive). Such a file is never listed, read or
// written where a person chooses the path. Symbolic links are followed, and a path that does not exist yet is
// judged by the part that does. A relative path is relative to the working folder. A path that cannot be
// resolved counts as own.
bool is_own(const std::filesystem::path& folder, const std::filesystem::path& path);

}  // namespace zrl::console_folder
