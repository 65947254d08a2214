#pragma once

#include <string>
#include <vector>

// Takes the place of the system's fsync() and fdatasync() in the program that it is linked into, and in all
// its shared libraries: files are synced as before, and their names are kept.
namespace zrl::test {

// The files and folders that were synced since the last call, by their names at that time without the folder.
std::vector<std::string> take_syncs();

// The next file is not synced: the call fails with EIO. Its name is kept all the same.
void fail_next_sync();

}  // namespace zrl::test
