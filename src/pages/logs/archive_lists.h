#pragma once

#include <functional>
#include <string_view>

#include "core/controls.h"
#include "core/database_client.h"

namespace zrl {

// The part of the archive page that shows the list which an action changed last, in a box, and takes entries
// off it again: clicking an item copies it into the entry field, from where remove_entry() reads it.
class ArchiveLists {
 public:
  // The list that an action changes.
  struct Touched {
    const ListTable& list;
    bool domains = false;        // a leading "*@" of its entries is not shown
    bool second_removal = true;  // the removal is repeated with "*@" in front
  };

  // Sets the box's click handler. All three are kept by reference and must outlive this object.
  ArchiveLists(DatabaseClient& steps, ListBox& box, TextField& entry);

  // Makes this the list that fill() shows; it must live as long as this object.
  void touch(const Touched& touched) { touched_ = &touched; }
  // Reads the list into the box, without its empty entries. Does nothing before the first touch().
  void fill();
  // Deletes the text of the entry field from the list. False if the field is empty or no list was touched;
  // the deletion itself may fail all the same, which is recorded.
  bool remove_entry();
  // Deletes the sender, trimmed, from `opposite` and inserts it into `own`.
  void list_sender(std::string_view sender, const ListTable& own, const ListTable& opposite);

 private:
  DatabaseClient& steps_;
  ListBox& box_;
  TextField& entry_;
  const Touched* touched_ = nullptr;
};

}  // namespace zrl
