#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/page.h"
#include "pages/lists/remote_update.h"

namespace zrl {

// A page that edits lists. A list is a table of one text column, shown in a list box; one text field
// holds the entry that is added or removed, and clicking an item copies it there. What a list box
// shows comes from the database alone: every change is followed by fill_lists().
//
// A page binds its lists, its transfer buttons and its update button in its constructor, and states
// its statements in its operations.
class ListPage : public Page {
 public:
  using Page::Page;

 protected:
  // Which entries of its table a list box shows.
  enum class Entries : std::uint8_t { all, without_at, with_at };

  // A list of the page: what its box shows, and what belongs to it.
  struct List {
    ListBox& box;
    ListTable table;
    std::string_view title = {};               // of its transfer dialog, English
    std::vector<std::string_view> flags = {};  // that tell the proxy of a change, in the order of raising
    Entries entries = Entries::all;
    Literal condition = "";
  };

  // Whether a refill chooses the item again that was clicked last, by its index.
  enum class Place : std::uint8_t { forgotten, kept };

  // The page's lists, in the order of their filling; they must live as long as the page. Clicking an item
  // copies its text into `entry`.
  void bind_lists(TextField& entry, Place place,
                  std::initializer_list<std::reference_wrapper<const List>> lists);

  // The button opens the transfer dialog of the list; when it returns, the list's flags are raised and the
  // lists filled again.
  void bind_transfer(Button& button, const List& list);

  // The button fetches the published lists and merges the page's share; then the lists are filled
  // again and the flags raised.
  void bind_update(Button& button, const std::vector<ListFile>& files,
                   std::initializer_list<std::string_view> flags = {});

  void raise_flags(const List& list);

  // Refills the list boxes, and whatever else the page reads along with them.
  virtual void fill_lists() = 0;
  void load() override { fill_lists(); }

  void fill_list_boxes();

 private:
  struct BoundList {
    const List& list;
    std::int16_t last_index = -1;  // the item that was clicked last
  };

  void click_item(TextField& entry, std::size_t list);
  void fill_list(const List& list);
  void open_transfer(const List& list);
  void update_lists(std::span<const ListFile> files);

  std::vector<BoundList> lists_;
  Place place_ = Place::forgotten;
};

// The domain of an e-mail address as the domain lists hold it: what stands behind the first "@", in
// small letters; empty if that is no domain, having another "@" or no dot.
std::string domain_of_address(std::string_view address);

// How every list page shows a list: a titled frame with the list and its buttons below. Several stand
// side by side in a row.
LayoutNode list_frame(Frame& title, ListBox& box, std::initializer_list<LayoutNode> buttons);

}  // namespace zrl
