#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "host/web/transport.h"

namespace zrl::web {

// Notes what strangers can do as often as they like: the first time at once, all that follows within a minute
// as one line with their number, so that nobody fills the audit log. On the I/O thread.
class CountedNotes {
 public:
  // What is noted: what happened, from where, and why it was refused. `times` is above 1 for a summary, whose
  // `where` is that of the last one.
  using Write = std::function<void(std::string_view what, std::string_view where, std::string_view why,
                                   std::uint64_t times)>;

  // `loop` must outlive it, or run no task after its end.
  CountedNotes(IoLoop& loop, Write write) : loop_(loop), write_(std::move(write)) {}

  // The texts `what` and `why` are ours, so that there are only a few of them.
  void happened(std::string_view what, std::string_view where, std::string_view why);
  // Notes what was not noted yet.
  void flush();

 private:
  struct Kind {
    std::uint64_t pending = 0;
    std::string where;
    bool waiting = false;
  };
  using Kinds = std::map<std::pair<std::string, std::string>, Kind>;

  void note_pending(Kinds::value_type& entry);
  void wait(Kinds::value_type& entry);

  IoLoop& loop_;
  const Write write_;
  Kinds kinds_;  // by what and why
};

}  // namespace zrl::web
