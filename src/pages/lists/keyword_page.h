#pragma once

#include "pages/lists/list_page.h"

namespace zrl {

// The keywords of subjects and bodies, the white list of subject words, and the rules for
// conspicuous subjects. One text field serves all three lists.
class KeywordPage : public ListPage {
 public:
  explicit KeywordPage(Console& console);

  TextField Text1{*this, "Text1",
                  "The word to add or remove; clicking an entry of a list copies it here. A regular "
                  "expression is written REGEX[...]"};
  Label Label1{*this, "Label1", "Word", Text1};

  Frame Frame1{*this, "Frame1", "Subject keywords"};
  ListBox List1{*this, "List1",
                "Mail with one of these in its subject is rejected or marked; click an entry to edit or "
                "remove it"};
  Label Label2{*this, "Label2", "Words in the subject", List1};
  Button Command1{*this, "Command1", "Add",
                  "Puts the word on the list of subject keywords and takes it off the subject white list"};
  Button Command3{*this, "Command3", "Remove", "Takes the word off the list of subject keywords"};
  Button Command5{*this, "Command5", "Import and export...",
                  "Moves the subject keywords from or to a text file"};

  Frame Frame2{*this, "Frame2", "Body keywords"};
  ListBox List2{*this, "List2",
                "Mail with one of these in its body is rejected or marked; click an entry to edit or "
                "remove it"};
  Label Label3{*this, "Label3", "Words in the body", List2};
  Button Command2{*this, "Command2", "Add", "Puts the word on the list of body keywords"};
  Button Command4{*this, "Command4", "Remove", "Takes the word off the list of body keywords"};
  Button Command6{*this, "Command6", "Import and export...",
                  "Moves the body keywords from or to a text file"};

  Frame Frame3{*this, "Frame3", "Subject white list"};
  ListBox List3{*this, "List3",
                "Mail with one of these in its subject passes; click an entry to edit or remove it"};
  Label Label4{*this, "Label4", "Words that let mail pass", List3};
  Button Command7{*this, "Command7", "Add",
                  "Puts the word on the subject white list and takes it off the list of subject keywords"};
  Button Command8{*this, "Command8", "Remove", "Takes the word off the subject white list"};
  Button Command9{*this, "Command9", "Import and export...",
                  "Moves the subject white list from or to a text file"};

  Button remote{*this, "remote", "Update from server",
                "Fetches the published keywords and merges them into all three lists"};

  Frame Frame4{*this, "Frame4", "Where the lists apply"};
  CheckBox Check1{*this, "Check1", "Subject", "Checks subjects against the subject keywords"};
  CheckBox Check3{*this, "Check3", "Use the subject white list",
                  "Lets mail pass by its subject; possible while subjects are checked"};
  CheckBox Check2{*this, "Check2", "Message body", "Checks bodies against the body keywords"};
  CheckBox checkheader{*this, "checkheader", "Message headers",
                       "Checks the headers for keywords too; can be changed if bodies were checked when "
                       "the lists were last read"};

  Frame Frame5{*this, "Frame5", "Conspicuous subjects"};
  CheckBox checklongsubject{*this, "checklongsubject", "Long subjects", "Checks for overlong subjects"};
  CheckBox checkshortsubject{*this, "checkshortsubject", "Short subjects", "Checks for very short subjects"};
  CheckBox subjectspace{*this, "subjectspace", "Many blanks",
                        "Checks for subjects with many blanks; ticking it stores 5 as their number, and a "
                        "stored number from 3 on shows as ticked"};

 private:
  void load() override;
  void fill_lists() override;
  void load_subjectspace();

  void click_subject_check();
  void follow_subject_check();
  std::string header_check_path();

  void add(const List& list);
  void add_subject_keyword();
  void remove(const List& list);

  const List subjects_{List1, list::subject_keywords, "Subject Keywords", Entries::all, "entry<>''"};
  const List bodies_{List2, list::body_keywords, "Body Keywords", Entries::all, "entry<>''"};
  const List white_{List3, list::white_subjects, "Subject Whitelist", Entries::all, "entry<>''"};
};

}  // namespace zrl
