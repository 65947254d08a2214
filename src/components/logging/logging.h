#pragma once

#include <memory>

#include "core/contracts/console_services.h"
#include "core/contracts/logger.h"

namespace zrl::logging {

// A logger that opens the file anew for each line, so that the file may be rotated at any time. A line is one
// write(2) in append mode, which is why lines of several processes do not mix; it is not flushed to the disk.
// A new file can be read by everybody (mode 0644, less the umask). Paths are used as given, relative ones
// from the working folder. problem() is the system's text for the last failure. Nothing raises zrl::Error;
// the object does not use the console and may outlive it.
std::shared_ptr<Logger> make(ConsoleServices& console);

}  // namespace zrl::logging
