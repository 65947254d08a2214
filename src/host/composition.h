#pragma once

#include "core/console.h"

namespace zrl {

// Registers every component that this build has with the console. The one place that knows both
// interfaces and implementations.
void register_components(Console& console);

}  // namespace zrl
