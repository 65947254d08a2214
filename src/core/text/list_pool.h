#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <unordered_map>

#include "core/text/string_list.h"

namespace zrl {

// Long lists that several consoles hold at the same time: equal ones share one arena. From any thread.
class ListPool {
 public:
  // Shorter lists (in bytes of their arena) are not worth the comparison.
  static constexpr std::size_t least = 256 << 10;

  // The same list, sharing its arena with an equal one that somebody holds; `list` is used up. Costs one pass
  // over the texts, and a second one if there is such a list.
  StringList shared(StringList list);
  // Drops what nobody else holds any more, as shared() does by the way. To be called when a console has
  // dropped its lists.
  void tidy();

 private:
  void drop_unused();

  std::mutex mutex_;
  std::unordered_multimap<std::uint64_t, StringList> lists_;  // by fingerprint
};

}  // namespace zrl
