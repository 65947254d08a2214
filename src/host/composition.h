#pragma once

#include "core/console.h"

namespace zrl {

// Registers every component that this build has with the console, which must outlive them. Makes none but the
// registry, which all users of the console share. This is the one place that knows both the interfaces and
// their implementations.
void register_components(Console& console);

}  // namespace zrl
