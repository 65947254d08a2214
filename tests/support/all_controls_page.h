#pragma once

#include "core/page.h"

namespace zrl::test {

// A dialog to be opened modal or modeless, as the host allows.
class SampleDialog : public Form {
 public:
  explicit SampleDialog(Console& console);

  Label Label1{*this, "Label1", "A dialog keeps what is typed into it."};
  TextField source{*this, "source", "Where the file lies"};
  Label Label2{*this, "Label2", "File", source};
  DriveList Drive1{*this, "Drive1", "Where to look"};
  Label Label3{*this, "Label3", "Drive", Drive1};
  FolderList Dir1{*this, "Dir1", "Choosing a folder enters it"};
  Label Label4{*this, "Label4", "Folder", Dir1};
  FileList File1{*this, "File1", "Choosing a file puts its path into the field"};
  Label Label5{*this, "Label5", "Files", File1};
  Button apply{*this, "apply", "Apply", "Adds the text to the page's list and closes the dialog"};
  Button cancel{*this, "cancel", "Cancel"};

  std::function<void(const std::string&)> on_apply;
};

// A page with every kind of control. It serves the tests of hosts; no product contains it.
class AllControlsPage : public Page {
 public:
  explicit AllControlsPage(Console& console);

  Label headline{*this, "headline", "Every kind of control"};

  Frame Frame1{*this, "Frame1", "Texts"};
  TextField Text1{*this, "Text1", "Its change shows in the label below", {.placeholder = "Type here"}};
  Label Label1{*this, "Label1", "Entry", Text1};
  TextField Text2{*this, "Text2", "Keeps its line breaks", {.multi_line = true}};
  Label Label2{*this, "Label2", "Notes", Text2};
  TextField Text3{
      *this, "Text3", "Every character is as wide as the next", {.multi_line = true, .fixed_pitch = true}};
  Label Label3{*this, "Label3", "Script", Text3};
  TextField Text4{*this, "Text4", "Never shown", {.secret = true}};
  Label Label4{*this, "Label4", "Password", Text4};
  Label echo{*this, "echo", ""};

  Frame Frame2{*this, "Frame2", "Switches and choices"};
  CheckBox Check1{*this, "Check1", "Enable the frame below", "Greys the choices out"};
  CheckBox Check2{*this, "Check2", "Show the hidden field"};
  CheckBox Check3{*this, "Check3", "<b>HTML</b> & \"quotes\" <script>alert(1)</script>"};
  TextField hidden{*this, "hidden", "Only there when it is wanted"};
  Label Label5{*this, "Label5", "Hidden field", hidden};

  Frame Frame3{*this, "Frame3", "Choices"};
  OptionButton Option1{*this, "Option1", "First choice"};
  OptionButton Option2{*this, "Option2", "Second choice"};
  OptionButton Option3{*this, "Option3", "Third choice"};

  Frame Frame4{*this, "Frame4", "Lists"};
  ComboBox Combo1{*this, "Combo1", "A list without an edit field", {}};
  Label Label6{*this, "Label6", "Position", Combo1};
  ComboBox Combo2{*this, "Combo2", "Choose or type", {.editable = true}};
  Label Label7{*this, "Label7", "Name", Combo2};
  ListBox List1{*this, "List1", "Clicking an entry puts it into the field"};
  Label Label8{*this, "Label8", "A million entries", List1};
  ListBox List2{*this, "List2", "Texts that strangers wrote"};
  Label Label9{*this, "Label9", "Hostile entries", List2};
  ScrollBar HScroll1{*this, "HScroll1", "Position in the archive"};
  Label Label10{*this, "Label10", "Position", HScroll1};

  Frame Frame5{*this, "Frame5", "Actions"};
  Button add{*this, "add", "Add", "Puts the entry on the list of a million"};
  Button remove{*this, "remove", "Remove", "Takes the entry off the list of a million"};
  Button fill{*this, "fill", "Fill the list", "Puts a million entries into the list"};
  Button clear{*this, "clear", "Clear the list"};
  Button ask{*this, "ask", "Ask", "Shows a message box with two answers"};
  Button fail{*this, "fail", "Fail", "Shows a critical message"};
  Button open{*this, "open", "Open a dialog"};
  Button work{*this, "work", "Work for two seconds", "Reports its progress"};
  Button wrong{*this, "wrong", "Run a wrong statement", "Is recorded as a failed step"};
  Button program{*this, "program", "Start a program"};
  Button offer{*this, "offer", "Offer a file", "Writes a file and offers it for fetching"};
  Button disabled{*this, "disabled", "Disabled"};
  Timer Timer1{*this, "Timer1", 500, false};
  CheckBox ticking{*this, "ticking", "Let the timer tick"};
  Label ticks{*this, "ticks", "0 ticks"};

 private:
  void load() override;
  void fill_list();
  void remove_entry();
  void open_dialog();
  void work_long();
  void offer_file();

  int tick_count_ = 0;
};

}  // namespace zrl::test
