#pragma once

#include "pages/lists/list_page.h"

namespace zrl {

// The addresses of the local users, and the directory server that users can be imported from. Adding a user
// also adds the user's domain to the list of local domains; removing one leaves that list alone.
class LocalUserPage : public ListPage {
 public:
  explicit LocalUserPage(Console& console);

  TextField uemail{*this,
                   "uemail",
                   "The address to add or remove; clicking an entry of the list copies it here. One with an "
                   "apostrophe is not stored",
                   {.placeholder = "name@example.com"}};
  Label Label1{*this, "Label1", "Address", uemail};

  Frame Frame1{*this, "Frame1", "Local users"};
  ListBox List1{*this, "List1", "The people who receive mail here; click an entry to edit or remove it"};
  Label Label2{*this, "Label2", "Addresses of local users", List1};
  Button adduser{
      *this, "adduser", "Add",
      "Puts the address, in small letters, on the list, and its domain on the list of local domains"};
  Button removeuser{*this, "removeuser", "Remove",
                    "Takes the address off the list as it is written here; its domain stays local"};
  Button imexfile{*this, "imexfile", "Import and export...",
                  "Moves the list of local users from or to a text file"};

  Frame Frame2{*this, "Frame2", "Directory"};
  TextField Text1{
      *this, "Text1", "The directory server that knows the users", {.placeholder = "ldap.example.com"}};
  Label Label3{*this, "Label3", "Directory server", Text1};
  Button Command1{*this, "Command1", "Store and import users",
                  "Stores the directory server and adds its users to the list"};
  Button importat{*this, "importat", "Import users now",
                  "Adds the users of the directory server that is stored to the list"};
  CheckBox check_real_ad{*this, "check_real_ad", "Check users against the directory",
                         "Also makes the directory's root domain local; needs a machine that belongs to a "
                         "directory, and unticks itself on others"};

  Frame Frame3{*this, "Frame3", "Where the list applies"};
  CheckBox usercheck{*this, "usercheck", "Check recipients", "Checks recipients against the local users"};
  CheckBox fakeprotectuser{*this, "fakeprotectuser", "Protect local users",
                           "Refuses senders from outside who claim the address of a local user"};

 private:
  const List users_{List1, list::local_users, "Local User", Entries::with_at};

  void load() override;
  void fill_lists() override;

  void add_user();
  void remove_user();
  void import_from_server();
  void import_users();
  void click_check_real_ad();
  std::string directory_root();
};

}  // namespace zrl
