#include "core/activity.h"

#include <array>

namespace zrl {

void ActivityRecord::succeeded(Kind kind, std::string_view text, std::int64_t time,
                               std::string_view public_text) {
  keep({.kind = kind, .ok = true, .write = true, .time = time, .text = text, .public_text = public_text});
}

void ActivityRecord::failed(Kind kind, std::string_view text, std::string_view error, std::int64_t time,
                            bool write, std::string_view public_text, bool expected) {
  if (!expected) ++failures_;
  keep({.kind = kind,
        .ok = false,
        .write = write,
        .time = time,
        .text = text,
        .error = error,
        .public_text = public_text,
        .expected = expected});
}

void ActivityRecord::turn_into_failure(std::uint64_t number, std::string_view error) {
  if (number < first_ || number >= total()) return;
  Held& held = entries_[number - first_];
  if (!held.ok) return;
  held.ok = false;
  held.undone = true;
  held.bytes.insert(held.text_length, error);
  held.error_length = static_cast<std::uint32_t>(error.size());
  held_bytes_ += error.size();
  ++failures_;
  make_room();
}

ActivityRecord::Entry ActivityRecord::operator[](std::uint64_t number) const {
  const Held& held = entries_[number - first_];
  const std::string_view bytes = held.bytes;
  const std::string_view text = bytes.substr(0, held.text_length);
  const std::string_view error = bytes.substr(held.text_length, held.error_length);
  const std::string_view public_text = bytes.substr(text.size() + error.size());
  return {held.kind,
          held.ok,
          held.write,
          held.time,
          text,
          error,
          public_text.empty() ? text : public_text,
          held.expected,
          held.routine,
          held.undone,
          held.act};
}

void ActivityRecord::keep(const Entry& entry) {
  std::string bytes;
  bytes.reserve(entry.text.size() + entry.error.size() + entry.public_text.size());
  bytes.append(entry.text).append(entry.error).append(entry.public_text);
  held_bytes_ += bytes.size() + sizeof(Held);
  entries_.push_back({std::move(bytes), static_cast<std::uint32_t>(entry.text.size()),
                      static_cast<std::uint32_t>(entry.error.size()), entry.kind, entry.ok, entry.write,
                      entry.expected, routine_, false, entry.time, act_});
  make_room();
}

void ActivityRecord::say(std::string text, SentenceTone tone) {
  constexpr std::size_t most = 1000;
  said_.push_back({std::move(text), tone});
  if (said_.size() <= most) return;
  said_.pop_front();
  ++first_said_;
}

void ActivityRecord::make_room() {
  while (held_bytes_ > limit_ && entries_.size() > 1) {
    held_bytes_ -= entries_.front().bytes.size() + sizeof(Held);
    entries_.pop_front();
    ++first_;
  }
}

std::string_view name_of(ActivityRecord::Kind kind) {
  static constexpr std::array<std::string_view, 6> names = {"sql",       "option",  "registry",
                                                            "component", "program", "file"};
  return names[static_cast<std::size_t>(kind)];
}

}  // namespace zrl
