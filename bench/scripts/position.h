#pragma once

namespace zrl::bench {

// Prints what the runner takes for a position with 100 small scripts, beside a bare loop of engine calls
// of the same functions, and beside the writing of as many log lines.
void measure_position();

}  // namespace zrl::bench
