#include "pages/lists/list_page.h"

#include <limits>
#include <memory>
#include <utility>

#include "core/list_catalogue.h"
#include "pages/lists/transfer_dialog.h"

namespace zrl {

void ListPage::bind_lists(TextField& entry, Place place,
                          std::initializer_list<std::reference_wrapper<const List>> lists) {
  place_ = place;
  for (const List& list : lists) {
    const std::size_t number = lists_.size();
    lists_.push_back({list});
    list.box.on_click = [this, &entry, number] { click_item(entry, number); };
    list.box.on_reload = [this] { fill_lists(); };
    if (const KnownList* known = find_list(list.table.name)) list.box.set_entries_are(known->entries);
  }
}

std::vector<Page::ListPlace> ListPage::list_places() const {
  std::vector<ListPlace> places;
  for (const BoundList& bound : lists_) {
    const List& list = bound.list;
    // A condition hides empty entries only, which no search finds.
    places.push_back({&list.box, {list.table, list.entries}});
  }
  return places;
}

void ListPage::bind_transfer(Button& button, const List& list) {
  list.box.set_transfer(button);
  button.on_click = [this, &list] {
    open_transfer(list);
    tell_proxy(list);
    fill_lists();
  };
}

void ListPage::bind_update(Button& button, const std::vector<ListFile>& files,
                           std::initializer_list<std::string_view> flags) {
  bind_busy(button, [this, files, raised = std::vector(flags)] {
    update_lists(files);
    fill_lists();
    for (const std::string_view flag : raised) raise_flag(flag);
  });
}

// Not every list has a flag by which the proxy is told.
void ListPage::tell_proxy(const List& list) {
  const KnownList* known = find_list(list.table.name);
  if (known == nullptr || known->flags.empty()) return;
  for (const std::string_view flag : known->flags) raise_flag(flag);
  say(said::proxy_told, {list_words(list.table)});
}

EntryChange ListPage::add_to(const List& list, std::string_view text) {
  EntryChange change = add_entry(*this, console(), list.table, text);
  say_addition(*this, list.table, text, change);
  return change;
}

EntryChange ListPage::remove_from(const List& list, std::string_view text) {
  EntryChange change = remove_entry(*this, console(), list.table, text);
  say_removal(*this, console(), list.table, text, change);
  return change;
}

void ListPage::fill_list_boxes() {
  for (BoundList& bound : lists_) fill_list(bound);
  if (place_ == Place::forgotten) return;
  for (const BoundList& bound : lists_) {
    ListBox& box = bound.list.box;
    if (bound.last_index < static_cast<std::int64_t>(box.items().size())) box.set_index(bound.last_index);
  }
}

// Returns when the dialog is closed if the host shows dialogs modal, else at once.
void ListPage::open_transfer(const List& list) {
  console().show(std::make_shared<TransferDialog>(console(), list.table, list.title));
}

void ListPage::click_item(TextField& entry, std::size_t list) {
  BoundList& bound = lists_[list];
  const std::int64_t index = bound.list.box.index();
  entry.set_text(bound.list.box.chosen());
  // The index is kept as a 16-bit number; a greater one is not remembered.
  if (index <= std::numeric_limits<std::int16_t>::max()) bound.last_index = static_cast<std::int16_t>(index);
}

// The looks at long lists take a hundredth of the time at most.
void ListPage::look_for_changes() {
  constexpr int times_its_length = 100;
  using Clock = std::chrono::steady_clock;
  const Clock::time_point begin = Clock::now();
  if (begin < next_look_) return;
  for (BoundList& bound : lists_) {
    if (bound.mark.empty() || bound.list.box.stale()) continue;
    const std::string mark = change_mark(bound.list.table);
    if (!mark.empty() && mark != bound.mark) bound.list.box.set_stale(true);
  }
  const Clock::time_point end = Clock::now();
  next_look_ = end + times_its_length * (end - begin);
}

// The mark comes first, so that what is changed between the two is not missed.
void ListPage::fill_list(BoundList& bound) {
  const List& list = bound.list;
  bound.mark = console().host().guards_newer_values() ? change_mark(list.table) : std::string();
  StringList entries = rows(list.table, list.condition).value_or(StringList());
  if (list.entries != Entries::all) {
    const bool wanted = list.entries == Entries::with_at;
    entries.retain([wanted](std::string_view entry) { return (entry.find('@') != entry.npos) == wanted; });
  }
  list.box.set_items(std::move(entries));
}

void ListPage::update_lists(std::span<const ListFile> files) {
  std::string status;
  const bool fetched = fetch_lists(*this, component<Downloader>(), status);
  if (!fetched) say_not_fetched(*this);
  const MergedLists merged = merge_lists(*this, console(), files);
  if (fetched) say_merged(*this, merged);
}

LayoutNode list_head(LayoutNode entry, std::initializer_list<LayoutNode> tools) {
  return row({grow(std::move(entry)), row(tools)});
}

LayoutNode list_frame(Frame& title, ListBox& box, std::initializer_list<LayoutNode> buttons) {
  return grow(frame(title, column({row(buttons), grow(box)})));
}

}  // namespace zrl
