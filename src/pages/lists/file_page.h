#pragma once

#include "pages/lists/list_page.h"

namespace zrl {

// The file names and the extensions of attachments that are blocked. One text field serves both
// lists; entries are kept in lower case.
class FilePage : public ListPage {
 public:
  explicit FilePage(Console& console);

  TextField Text1{*this, "Text1",
                  "The file name, or the extension without its dot, to add or remove; clicking an entry of a "
                  "list copies it here. It is kept in lower case and not stored with an apostrophe"};
  Label Label1{*this, "Label1", "File name or extension", Text1};

  Frame Frame1{*this, "Frame1", "File names"};
  ListBox files{*this, "files",
                "Attachments with these names are blocked; click an entry to edit or remove it"};
  Label Label2{*this, "Label2", "Blocked file names", files};
  Button addfiles{*this, "addfiles", "Add", "Blocks attachments with this name"};
  Button leftim{*this, "leftim", "Import and export...", "Moves the file names from or to a text file"};

  Frame Frame2{*this, "Frame2", "Extensions"};
  ListBox extension{*this, "extension",
                    "Attachments with these extensions are blocked; click an entry to edit or remove it"};
  Label Label3{*this, "Label3", "Blocked extensions", extension};
  Button addextension{
      *this, "addextension", "Add",
      "Blocks attachments with this extension; enter it without a dot, else it is not stored"};
  Button rightim{*this, "rightim", "Import and export...", "Moves the extensions from or to a text file"};

  Button deleteit{*this, "deleteit", "Remove from both lists",
                  "Takes the text off the file names and off the extensions"};
  Button freshit{*this, "freshit", "Refresh", "Reads both lists and all switches again"};
  Button remoteupdate{*this, "remoteupdate", "Update from server",
                      "Fetches the published file names and extensions and merges them into both lists"};

  Frame Frame3{*this, "Frame3", "Where the lists apply"};
  CheckBox checkfiles{*this, "checkfiles", "File names of attachments",
                      "Checks the names of attachments against the file names"};
  CheckBox checkfilesstream{*this, "checkfilesstream", "File names in the message stream",
                            "Looks for the file names in the message as it passes"};
  CheckBox checkextension{*this, "checkextension", "Extensions of attachments",
                          "Checks the names of attachments against the extensions"};

 private:
  const List files_{files, list::file_names, "File List"};
  const List extensions_{extension, list::extensions, "Extension List"};

  void fill_lists() override;

  void add(const List& list);
  void remove_text();
};

}  // namespace zrl
