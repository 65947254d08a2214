#include "core/activity.h"

#include <array>

namespace zrl {

void ActivityRecord::succeeded(Kind kind, std::string_view text, std::int64_t time) {
  keep({std::string(text), static_cast<std::uint32_t>(text.size()), kind, true, true, time});
}

void ActivityRecord::failed(Kind kind, std::string_view text, std::string_view error, std::int64_t time,
                            bool write) {
  std::string bytes;
  bytes.reserve(text.size() + error.size());
  bytes.append(text).append(error);
  ++failures_;
  keep({std::move(bytes), static_cast<std::uint32_t>(text.size()), kind, false, write, time});
}

ActivityRecord::Entry ActivityRecord::operator[](std::uint64_t number) const {
  const Held& held = entries_[number - first_];
  const std::string_view bytes = held.bytes;
  return {held.kind,
          held.ok,
          held.write,
          held.time,
          bytes.substr(0, held.text_length),
          bytes.substr(held.text_length)};
}

void ActivityRecord::keep(Held entry) {
  held_bytes_ += entry.bytes.size() + sizeof(Held);
  entries_.push_back(std::move(entry));
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
