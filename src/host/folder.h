#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "core/console.h"

namespace zrl {

// The console's folder if the command line names none: the state directory that systemd gives a service, else
// $XDG_DATA_HOME/zrlconsole, else ~/.local/share/zrlconsole. It need not exist yet.
std::filesystem::path default_folder();

// Does what an installer does: makes the folder with its sub-folders, "proxy.ini", the registry values
// `ProductVersion` and `dataprovider`, and the embedded database with its tables. What exists already stays
// as it is, except for a `ProductVersion` of another version, and that a folder of our own account is made
// safe (secure_folder). Returns one line for each thing that was made. Raises zrl::Error,
// std::filesystem::filesystem_error or what secure_folder() does; what was made until then stays.
std::vector<std::string> lay_out_folder(Console& console);

// To be called when a folder that is there already is opened: after an upgrade, writes the version of this
// program to the registry value `ProductVersion`. True if it was another one and has been replaced. A value
// that is missing stays so. Never throws: a failure is recorded.
bool update_product_version(Console& console);

}  // namespace zrl
