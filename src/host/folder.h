#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "core/console.h"

namespace zrl {

// The console's folder where none is told: what systemd gives a service, else
// $XDG_DATA_HOME/zrlconsole, else ~/.local/share/zrlconsole.
std::filesystem::path default_folder();

// Does what an installer does: makes the folder with its sub-folders, "proxy.ini", the registry
// values `ProductVersion` and `dataprovider`, and the embedded database with its tables. What is
// there already stays as it is. Tells what it made, one line each. Raises zrl::Error or
// std::filesystem::filesystem_error.
std::vector<std::string> lay_out_folder(Console& console);

}  // namespace zrl
