#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/sentence.h"

namespace zrl {

class Console;

// The act that runs: what it says of itself, and which entries of the activity record are its own. An act is
// what a person or a timer sets off; acts that run while another one waits are acts of their own, whose
// failures are none of the other's.
//
// What is said becomes a sentence of the activity record when the act has ended, because only then it is
// known whether its writes have lasted. One thread; owned by the console.
class Acts {
 public:
  explicit Acts(Console& console) : console_(console) {}
  Acts(const Acts&) = delete;
  Acts& operator=(const Acts&) = delete;

  // In pairs, see Console::begin_action().
  void begin();
  void end();

  // The act says the sentence of what it has written since it said the last one. If a write of that failed,
  // it is the failed one, with the reason; a reload flag that was not raised is told beside what was done.
  // Outside an act it enters the record at once. The sentence is a literal; `tone` is that of what was done.
  void say(const Sentence& sentence, SentenceValues values, SentenceTone tone = SentenceTone::good);
  // The same where one write of them is the sentence's, and the others belong to it: `worked` tells whether
  // that one did.
  void say_of(bool worked, const Sentence& sentence, SentenceValues values);
  // The same with a number as its first value, of what was done; one that did nothing is neutral. Where an
  // act goes on after a failure, `worked` tells whether it did anything.
  void say_counted(const Sentence& sentence, std::uint64_t count, SentenceValues values,
                   std::optional<bool> worked = {});
  // Says this text, a literal, whatever failed before. With `reason`, that of the act's last failure follows.
  enum class Reason : bool { none, told };
  void say(std::string_view text, SentenceTone tone, SentenceValues values, Reason reason = Reason::none);

  // While one lives, what is written is no act of a person: the showing of a page, or upkeep beside an act.
  // Its entries are marked as routine.
  class Routine {
   public:
    explicit Routine(Acts& acts);
    Routine(const Routine&) = delete;
    Routine& operator=(const Routine&) = delete;
    ~Routine();

   private:
    Acts& acts_;
    bool before_;
  };

  // The act that waits keeps its state; to be called in pairs, around the acts that run meanwhile.
  struct Pending {
    std::string done;
    std::string failed;  // empty: `done` is said whatever failed before
    SentenceTone tone;
    std::optional<bool> worked;  // nothing: see the writes
    std::uint64_t until;         // the entries of the record that had been made when it was said
  };
  struct State {
    std::uint64_t number = 0;
    std::uint64_t first = 0;     // entry of the record
    std::uint64_t failures = 0;  // ever recorded when the act began
    bool routine = false;
    std::vector<Pending> said;
  };
  State suspend();
  void resume(State state);

 private:
  void mark();
  void add(std::string_view done, std::string_view failed, SentenceTone tone,
           std::span<const std::string_view> values, std::optional<bool> worked = {});
  // Why a write of the act failed whose entry lies in this range, or any of its steps; nothing if none did.
  std::optional<std::string> reason_of_write(std::uint64_t from, std::uint64_t to, bool undone) const;
  std::optional<std::string> first_reason(std::uint64_t from) const;
  std::optional<std::string> last_reason() const;
  std::string with_reason(std::string text, std::string_view reason) const;

  Console& console_;
  State state_;
  std::uint64_t last_ = 0;
};

// filled() (core/text/filled.h) for sentences: values are made printable, and those of more than 160 bytes
// are cut.
std::string with_values(std::string_view text, std::span<const std::string_view> values);

}  // namespace zrl
