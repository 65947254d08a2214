#pragma once

#include <string>
#include <string_view>

#include "core/database_client.h"
#include "core/form.h"

namespace zrl {

// Moves a whole list between its table and a text file: UTF-8, one entry a line. Files are on the console's
// machine; a relative path is below the console's folder, and "\" and "/" both separate folders. The dialog
// opens on the folder for lists in the console's folder, which is made if it is missing. The console's own
// files are neither listed nor read nor written (core/contracts/console_folder.h). Import and deletion are
// all or nothing; an export appears complete or not at all, and is offered to the user for download. A label
// says what came of it; a failure is also a recorded step. Where the user sits at another machine, the
// folders of the console's are what few people need: the host exchanges files with the user
// (FileList::Exchange).
class TransferDialog : public Form, public DatabaseClient {
 public:
  // `title` is English; its translation becomes the caption. The console must outlive the dialog. The
  // constructor already makes the database component that the transfers use.
  TransferDialog(Console& console, const ListTable& list, std::string_view title);

  Frame Frame1{*this, "Frame1", "Action"};
  OptionButton export_{*this, "export", "Export", "Writes the list to the file"};
  OptionButton import_{*this, "import", "Import", "Adds the entries of the file that the list lacks"};
  OptionButton delete_{*this, "delete", "Delete", "Takes the entries of the file off the list"};
  CheckBox overwrite{*this, "overwrite", "Overwrite an existing file",
                     "An export leaves an existing file alone unless this is ticked"};

  TextField source{
      *this, "source", "The full path, with folder and name, on the console's machine", {.path = true}};
  Label Label1{*this, "Label1", "File", source};
  DriveList Drive1{*this, "Drive1", "Where to look for folders"};
  Label Label2{*this, "Label2", "Drive", Drive1};
  FolderList Dir1{*this, "Dir1", "Choosing a folder enters it"};
  Label Label3{*this, "Label3", "Folders", Dir1};
  FileList File1{*this, "File1", "Choosing a file puts its path into the field above"};
  Label Label4{*this, "Label4", "Files", File1};

  Button action{*this, "action", "Export", "Does it with the file that is named above"};
  Label result{*this, "result", ""};
  Frame Frame2{*this, "Frame2", "Files on the console's machine"};

  void close() override;

 private:
  void load();
  void enter(std::string_view folder);
  void choose(const OptionButton& option);
  void run_action();
  bool export_list(const std::string& path);
  void say_counts(std::string_view text, const ListFileResult& counts);
  void show_result(std::string_view changed, std::string_view unchanged, const ListFileResult& counts);

  ListTable list_;
};

}  // namespace zrl
