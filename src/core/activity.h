#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

#include "core/sentence.h"

namespace zrl {

// The outcome of the steps of a console's actions: every write and every failed step, in order. A page goes
// on after a failed step; this record is where an operator sees it. Texts are UTF-8 as far as the steps'
// texts are, and may quote strangers: hosts make them printable. Kept in memory only; hosts write it to disk
// if they want to. It belongs to the console's thread.
class ActivityRecord {
 public:
  // What a step worked on. `component` is any component but the database's statements and options.
  enum class Kind : std::uint8_t { sql, option, registry, component, program, file };

  struct Entry {
    Kind kind;
    bool ok;
    bool write;         // else a read that failed
    std::int64_t time;  // seconds since 1970, UTC
    std::string_view text;
    std::string_view error = {};        // empty if ok
    std::string_view public_text = {};  // `text` with its secrets hidden: for files and screens
    bool expected = false;              // a failure that the step is prepared for; no reason for a notice
    bool routine = false;   // no act of a person, see Acts::Routine; neither a notice nor an audit
    bool undone = false;    // it worked, but did not last, see turn_into_failure()
    std::uint64_t act = 0;  // of which it is a step, see Acts; 0 outside of all
  };

  // Keeps at most about `limit` bytes, which count the texts and a fixed cost per entry. The oldest entries
  // are dropped to make room; the newest always stays, however long.
  explicit ActivityRecord(std::size_t limit = default_limit) : limit_(limit) {}

  // Record a write that worked, and a step that did not. `time` is in seconds since 1970, UTC. Texts are
  // copied. `public_text` is needed only where `text` holds a secret. An `expected` failure is one that the
  // step is prepared for, such as a table that is made if it is missing; it does not count as a failure.
  void succeeded(Kind kind, std::string_view text, std::int64_t time, std::string_view public_text = {});
  void failed(Kind kind, std::string_view text, std::string_view error, std::int64_t time, bool write,
              std::string_view public_text = {}, bool expected = false);
  // A write that worked has been undone since: its entry becomes a failure with this error. Nothing happens
  // if the entry has been dropped, or is a failure already.
  void turn_into_failure(std::uint64_t number, std::string_view error);

  // Entries are numbered from 0 since the record was made, and keep their numbers. Those from first() to
  // total() - 1 are still held, so a reader that remembers total() knows what is new and what it missed.
  std::uint64_t first() const { return first_; }
  std::uint64_t total() const { return first_ + entries_.size(); }
  std::uint64_t failures() const { return failures_; }  // ever recorded, without the expected ones

  // `number` from first() to total() - 1. The views are valid until the next entry is recorded.
  Entry operator[](std::uint64_t number) const;

  // The entries that follow belong to this act, and are routine or not.
  void set_act(std::uint64_t act, bool routine) {
    act_ = act;
    routine_ = routine;
  }

  // What acts said of themselves, in the language of the console; printable and of bounded length.
  struct Said {
    std::string text;
    SentenceTone tone;
  };
  void say(std::string text, SentenceTone tone);
  // Numbered as the entries are; the newest 1,000 are held.
  std::uint64_t first_said() const { return first_said_; }
  std::uint64_t total_said() const { return first_said_ + said_.size(); }
  const Said& said(std::uint64_t number) const { return said_[number - first_said_]; }

  static constexpr std::size_t default_limit = std::size_t{64} << 20;

 private:
  struct Held {
    std::string bytes;  // text, then error, then the public text if it is another
    std::uint32_t text_length;
    std::uint32_t error_length;
    Kind kind;
    bool ok;
    bool write;
    bool expected;
    bool routine;
    bool undone;
    std::int64_t time;
    std::uint64_t act;
  };

  void keep(const Entry& entry);
  void make_room();

  std::deque<Held> entries_;
  std::deque<Said> said_;
  std::uint64_t first_said_ = 0;
  std::uint64_t act_ = 0;
  bool routine_ = false;
  std::uint64_t first_ = 0;
  std::uint64_t failures_ = 0;
  std::size_t held_bytes_ = 0;
  std::size_t limit_;
};

// "sql", "option" and so on, as hosts print it.
std::string_view name_of(ActivityRecord::Kind kind);

}  // namespace zrl
