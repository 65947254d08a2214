#include "core/text/list_pool.h"

#include <utility>

namespace zrl {

StringList ListPool::shared(StringList list) {
  if (list.memory() < least) return list;
  list.freeze();
  const std::uint64_t fingerprint = list.fingerprint();
  const std::scoped_lock lock(mutex_);
  drop_unused();
  const auto [first, last] = lists_.equal_range(fingerprint);
  for (auto it = first; it != last; ++it) {
    if (it->second == list) return it->second;
  }
  lists_.emplace(fingerprint, list);
  return list;
}

void ListPool::tidy() {
  const std::scoped_lock lock(mutex_);
  drop_unused();
}

void ListPool::drop_unused() {
  std::erase_if(lists_, [](const auto& entry) { return entry.second.sharers() == 1; });
}

}  // namespace zrl
