#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/list_changes.h"
#include "core/page.h"
#include "pages/lists/remote_update.h"

namespace zrl {

// A page that edits lists. A list is a table of one text column, shown in a list box; one text field
// holds the entry that is added or removed, and clicking an item copies it there. What a list box
// shows comes from the database alone: every change is followed by fill_lists().
//
// A page declares each list as a member and binds its lists, transfer buttons and update button in its
// constructor. Its operations add and remove entries as core/list_changes.h says for each list. As on every
// page, no step throws: what fails is recorded, and the operation goes on.
class ListPage : public Page {
 public:
  using Page::Page;

  void look_for_changes() override;
  std::vector<ListPlace> list_places() const override;

 protected:
  // Which entries of its table a list box shows: all, or only those without or with an "@".
  using Entries = EntrySearch::Entries;

  // A list of the page: what its box shows, and what belongs to it. The texts are literals.
  struct List {
    ListBox& box;
    ListTable table;
    std::string_view title = {};  // of its transfer dialog, English
    Entries entries = Entries::all;
    Literal condition = "";  // of the SELECT, without WHERE; empty selects all rows
  };

  // Whether a refill selects again the index that was clicked last. This runs no click.
  enum class Place : std::uint8_t { forgotten, kept };

  // The page's lists, in the order in which they are filled; they are kept by reference, so they must be
  // members of the page. Clicking an item copies its text into `entry`. To be called once.
  void bind_lists(TextField& entry, Place place,
                  std::initializer_list<std::reference_wrapper<const List>> lists);

  // The button opens the transfer dialog of the list. Afterwards the list's flags are raised and all lists
  // filled again, whether or not anything was transferred. Where the host shows dialogs modeless, this
  // happens at once. `list` must be a member of the page. Files that people drop on the list's box lead to
  // the dialog, too.
  void bind_transfer(Button& button, const List& list);

  // The button fetches all published lists and merges `files`, the page's share of them; then the lists are
  // filled again and the flags raised, even after a failure. The button is disabled meanwhile.
  void bind_update(Button& button, const std::vector<ListFile>& files,
                   std::initializer_list<std::string_view> flags = {});

  // Raises the list's flags, which makes the proxy read the list again.
  void tell_proxy(const List& list);

  // add_entry() and remove_entry() of core/list_changes.h; both say what became of the entry.
  EntryChange add_to(const List& list, std::string_view text);
  EntryChange remove_from(const List& list, std::string_view text);

  // Refills the list boxes, and whatever else the page reads along with them.
  virtual void fill_lists() = 0;
  void load() override { fill_lists(); }

  // Fills all bound boxes from the database. A list that cannot be read is shown empty.
  void fill_list_boxes();

 private:
  struct BoundList {
    const List& list;
    std::int16_t last_index = -1;  // the item that was clicked last
    std::string mark = {};         // of the rows, when the box was filled; empty if that is not known
  };

  void click_item(TextField& entry, std::size_t list);
  void fill_list(BoundList& bound);
  void open_transfer(const List& list);
  void update_lists(std::span<const ListFile> files);

  std::vector<BoundList> lists_;
  std::chrono::steady_clock::time_point next_look_;
  Place place_ = Place::forgotten;
};

// The first line of a list page: the field for entries, alone or in a row with what works on all lists, and
// apart from it what concerns the lists as a whole.
LayoutNode list_head(LayoutNode entry, std::initializer_list<LayoutNode> tools);

// The layout of a list on every list page: a titled frame that grows, with a row of buttons, near the
// field that they work on, and the list below. Several of them fit side by side in a row.
LayoutNode list_frame(Frame& title, ListBox& box, std::initializer_list<LayoutNode> buttons);

}  // namespace zrl
