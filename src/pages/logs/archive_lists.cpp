#include "pages/logs/archive_lists.h"

#include <array>

#include "core/list_changes.h"
#include "core/text/text.h"

namespace zrl {

namespace {

constexpr std::string_view any_mailbox = "*@";

}  // namespace

ArchiveLists::ArchiveLists(DatabaseClient& steps, ListBox& box, TextField& entry)
    : steps_(steps), box_(box), entry_(entry) {
  box_.on_click = [this] { entry_.set_text(box_.chosen()); };
}

void ArchiveLists::fill() {
  if (touched_ == nullptr) return;
  const StringList entries = steps_.rows(touched_->list).value_or(StringList());
  StringList shown;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const bool hides = touched_->domains && entries[i].starts_with(any_mailbox);
    if (!entries[i].empty()) shown.push_back(entries[i].substr(hides ? any_mailbox.size() : 0));
  }
  box_.set_items(std::move(shown));
}

// The second statement is executed for the address lists too, where it matches nothing.
bool ArchiveLists::remove_entry() {
  if (entry_.text().empty() || touched_ == nullptr) {
    steps_.say_nothing(said::no_entry_to_remove);
    return false;
  }
  const std::string entry = entry_.text();
  const auto remove = std::array{take_off(touched_->list)};
  run_entry_steps(steps_, remove, entry);
  if (touched_->second_removal) run_entry_steps(steps_, remove, std::string(any_mailbox) + entry);
  steps_.say(said::removed, {entry, steps_.list_words(touched_->list)});
  return true;
}

void ArchiveLists::list_sender(std::string_view sender, const ListTable& own, const ListTable& opposite) {
  const std::string address(trim(sender));
  run_entry_steps(steps_, std::array{take_off(opposite), put_on(own)}, address);
}

}  // namespace zrl
