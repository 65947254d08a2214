#pragma once

#include "suite.h"

namespace zrl::bench {

void add_base64(Suite& suite);
void add_keywords(Suite& suite);
void add_regexps(Suite& suite);

}  // namespace zrl::bench
