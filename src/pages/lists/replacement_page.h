#pragma once

#include "pages/lists/list_page.h"

namespace zrl {

// The words that the proxy replaces in messages. The table `rwords` has two columns, the word (unique) and
// its replacement; a line of the list box shows both with " ==>> " between them.
class ReplacementPage : public ListPage {
 public:
  explicit ReplacementPage(Console& console);

  TextField Text1{*this, "Text1",
                  "The word to look for in messages; clicking a line of the list copies it here. It is not "
                  "stored with an apostrophe"};
  Label Label1{*this, "Label1", "Word", Text1};
  TextField Text2{*this, "Text2",
                  "What the word becomes; nothing here stores a blank. It is not stored with an apostrophe"};
  Label Label2{*this, "Label2", "Replacement", Text2};
  Button Command1{*this, "Command1", "Save",
                  "Adds the word with its replacement, or gives a listed word another replacement"};
  Button Command2{*this, "Command2", "Remove", "Takes the word and its replacement off the list"};

  Frame Frame1{*this, "Frame1", "Replacements"};
  ListBox List1{*this, "List1", "Each word with what it becomes; click a line to edit or remove it"};
  Label Label3{*this, "Label3", "Words and their replacements", List1};

  Frame Frame2{*this, "Frame2", "Where the list applies"};
  CheckBox Check2{*this, "Check2", "Message body", "Lets the proxy change message bodies"};

 private:
  void fill_lists() override;

  void choose_pair();
  void save_pair();
  void remove_pair();
};

}  // namespace zrl
