#include "core/contracts/database.h"

#include <limits>

#include "core/text/error.h"
#include "core/text/text.h"

namespace zrl {

std::int16_t OptionValue::to_int16() const {
  if (text.empty()) return 0;
  const std::optional<std::int64_t> number = to_number(text);
  using Limits = std::numeric_limits<std::int16_t>;
  if (!number || *number < Limits::min() || *number > Limits::max()) {
    throw Error(error_number::type_mismatch, "Type mismatch: not a 16-bit integer");
  }
  return static_cast<std::int16_t>(*number);
}

}  // namespace zrl
