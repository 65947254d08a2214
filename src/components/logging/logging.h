#pragma once

#include <memory>

#include "core/contracts/console_services.h"
#include "core/contracts/logger.h"

namespace zrl::logging {

// A logger that opens the file anew for each line, so that it may be rotated at any time.
std::shared_ptr<Logger> make(ConsoleServices& console);

}  // namespace zrl::logging
