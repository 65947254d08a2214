#include "host/web/counted_notes.h"

#include <chrono>
#include <utility>

namespace zrl::web {

namespace {

constexpr std::chrono::milliseconds interval{60'000};

}  // namespace

void CountedNotes::happened(std::string_view what, std::string_view where, std::string_view why) {
  auto& entry = *kinds_.try_emplace({std::string(what), std::string(why)}).first;
  entry.second.where = where;
  ++entry.second.pending;
  if (entry.second.waiting) return;
  note_pending(entry);
  wait(entry);
}

void CountedNotes::flush() {
  for (auto& entry : kinds_) note_pending(entry);
}

void CountedNotes::note_pending(Kinds::value_type& entry) {
  const std::uint64_t times = std::exchange(entry.second.pending, 0);
  if (times > 0) write_(entry.first.first, entry.second.where, entry.first.second, times);
}

// References to the entries of a map stay valid.
void CountedNotes::wait(Kinds::value_type& entry) {
  entry.second.waiting = true;
  loop_.after(interval, [this, &entry] {
    entry.second.waiting = false;
    if (entry.second.pending == 0) return;
    note_pending(entry);
    wait(entry);
  });
}

}  // namespace zrl::web
