#include "core/contracts/host.h"

namespace zrl {

std::string ProgramStart::command_line() const {
  std::string result = program;
  for (const std::string& operand : operands) result.append(" ").append(operand);
  return result;
}

}  // namespace zrl
