#pragma once

#include <functional>
#include <memory>

#include "core/contracts/logger.h"

namespace zrl {

// Makes loggers that open the file anew for each line, so that it may be rotated at any time.
std::function<std::shared_ptr<Logger>()> make_logger_factory();

}  // namespace zrl
