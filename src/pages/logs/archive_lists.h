#pragma once

#include <functional>
#include <string_view>

#include "core/controls.h"
#include "core/database_client.h"

namespace zrl {

// The part of the archive page that puts what a mail shows on a list: the list that was touched last is
// shown in a box, where a click names the entry that remove_entry() takes off again.
class ArchiveLists {
 public:
  // What an action touches. Entries of the domain lists may begin with "*@", which is not shown.
  struct Touched {
    const ListTable& list;
    bool domains = false;
    bool second_removal = true;  // the removal is repeated with "*@" in front
  };

  // All of them must outlive it.
  ArchiveLists(DatabaseClient& steps, ListBox& box, TextField& entry);

  // From now on `touched` is shown; it must live as long as this object.
  void touch(const Touched& touched) { touched_ = &touched; }
  // Reads the list again. Nothing happens until one was touched.
  void fill();
  // False if there is nothing to remove.
  bool remove_entry();
  // The sender, trimmed, leaves one list and joins the other.
  void list_sender(std::string_view sender, const ListTable& own, const ListTable& opposite);

 private:
  DatabaseClient& steps_;
  ListBox& box_;
  TextField& entry_;
  const Touched* touched_ = nullptr;
};

}  // namespace zrl
