#include "core/contracts/components.h"

namespace zrl {

void ComponentRegistry::remove(std::string_view program_id) {
  const auto found = factories_.find(program_id);
  if (found != factories_.end()) factories_.erase(found);
}

bool ComponentRegistry::has(std::string_view program_id) const {
  return factories_.contains(program_id);
}

std::shared_ptr<void> ComponentRegistry::make(std::string_view program_id) const {
  const auto found = factories_.find(program_id);
  if (found == factories_.end()) {
    throw Error(error_number::cannot_create_object,
                "the component " + std::string(program_id) + " is not available");
  }
  return found->second();
}

}  // namespace zrl
